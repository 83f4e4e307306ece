// A bus that takes its time to tell what it can do.

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "ntos/pnp.h"
#include "support/tChildStack.h"
#include "trace/startedModules.h"

namespace {

using namespace std::chrono_literals;

NTSTATUS queryCapabilities(DEVICE_OBJECT* child, DEVICE_CAPABILITIES& capabilities) {
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  tDeviceRequest request(child, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  request.location().Parameters.DeviceCapabilities.Capabilities = &capabilities;
  request.send();
  EXPECT_EQ(request.completions(), 1);
  return request.status();
}

// Asks a child while its bus waits with the answer, and gives what it says in the end.
NTSTATUS askSlowBus(tChildStack& stack, DEVICE_CAPABILITIES& capabilities) {
  stack.keepsCapabilities = true;
  std::future<NTSTATUS> query =
      std::async(std::launch::async, [&] { return queryCapabilities(stack.child, capabilities); });
  EXPECT_EQ(query.wait_for(20ms), std::future_status::timeout);
  stack.completeKept();
  return query.get();
}

}  // namespace

TEST(PendingCapabilities, AreWaitedFor) {
  tChildStack stack;
  stack.floorCapabilities.DeviceState[PowerSystemWorking] = PowerDeviceD0;
  DEVICE_CAPABILITIES capabilities = {};
  EXPECT_EQ(askSlowBus(stack, capabilities), STATUS_SUCCESS);
  EXPECT_EQ(capabilities.DeviceState[PowerSystemWorking], PowerDeviceD0);
  EXPECT_EQ(capabilities.Address, 7u);
}

TEST(PendingCapabilities, FailAsTheBusDoes) {
  tChildStack stack;
  stack.floorStatus = STATUS_NO_SUCH_DEVICE;
  DEVICE_CAPABILITIES capabilities = {};
  EXPECT_EQ(askSlowBus(stack, capabilities), STATUS_NO_SUCH_DEVICE);
  EXPECT_EQ(capabilities.Address, 0u);
  stack.floorStatus = STATUS_SUCCESS;
}
