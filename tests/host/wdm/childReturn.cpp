// What is said when a device control to a child returns with more than its thread had before.

#include <gtest/gtest.h>

#include "ntos/thread.h"
#include "support/tBusStack.h"
#include "trace/capturedPrint.h"
#include "trace/startedModules.h"

namespace {

// Stays in a critical region when it is told to.
class tLingeringHandler final : public tChildHandler {
 public:
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {
    if (isLingering) KeEnterCriticalRegion();
  }

  bool isLingering = false;
};

class ChildReturn : public testing::Test {
 protected:
  ChildReturn() {
    bus.startBus();
    tTestChild const description(handler, 1, 7);
    EXPECT_EQ(bus.create(description.description), 0);
    child = bus.driver().newestDevice();
  }

  NTSTATUS control() { return tDeviceRequest(child, IRP_MJ_DEVICE_CONTROL).send(); }

  tLingeringHandler handler;
  tBusStack bus;
  DEVICE_OBJECT* child = nullptr;
};

using ChildReturnDeathTest = ChildReturn;

}  // namespace

TEST_F(ChildReturn, AControlThatTakesNothingIsNotMentioned) {
  tCapturedPrint const print;
  EXPECT_EQ(control(), STATUS_SUCCESS);
  EXPECT_EQ(print.text(), "");
}

TEST_F(ChildReturnDeathTest, AControlThatStaysInARegionIsNamedBeforeItReturns) {
  handler.isLingering = true;
  EXPECT_DEATH(control(),
               "\\[vexk\\] the request to a child device returns within a critical region\n"
               "ntos: The driver .* returned from the device control request in 1 critical "
               "regions; it was called in 0\\.");
}
