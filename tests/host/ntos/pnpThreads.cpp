// The PnP manager with its own thread, and several callers at once.

#include <gtest/gtest.h>

#include <thread>

#include "testBus.h"
#include "waiting.h"

namespace {

class PnpThreads : public BusTest {
 protected:
  PnpThreads() { ntoshost::setPnpMode(ntoshost::PnpMode::Worker); }

  // The list of children is the bus' own affair: one lock for it.
  NTSTATUS serveBus(IRP* request) override {
    std::lock_guard const lock(m_busLock);
    return BusTest::serveBus(request);
  }

  TestChild& plugLocked(char const* name) {
    std::lock_guard const lock(m_busLock);
    return plug(name);
  }

  void unplugLocked(TestChild& child) {
    std::lock_guard const lock(m_busLock);
    child.isListed = false;
  }

  NTSTATUS serveChild(TestChild& child, IRP* request) override {
    std::lock_guard const lock(m_childLock);
    return BusTest::serveChild(child, request);
  }

  std::recursive_mutex m_busLock;
  std::recursive_mutex m_childLock;
};

TEST_F(PnpThreads, TheManagersThreadAsksForInvalidatedRelations) {
  startBus();
  TestChild& one = plugLocked("one");
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  ntoshost::waitForPnp();
  EXPECT_EQ(stateOf(one.device), ntoshost::DeviceState::Started);
  unplugLocked(one);
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  ntoshost::waitForPnp();
  EXPECT_TRUE(one.isDeleted);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
}

TEST_F(PnpThreads, RelationsAreInvalidatedAtDispatchLevel) {
  startBus();
  plugLocked("one");
  KIRQL before;
  KeRaiseIrql(DISPATCH_LEVEL, &before);
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  KeLowerIrql(before);
  ntoshost::waitForPnp();
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 1u);
}

TEST_F(PnpThreads, APausedManagerCatchesUp) {
  startBus();
  ntoshost::setPnpMode(ntoshost::PnpMode::OnRequest);
  plugLocked("one");
  IoInvalidateDeviceRelations(m_bus, BusRelations);
  pause(20);
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
  ntoshost::setPnpMode(ntoshost::PnpMode::Worker);
  ntoshost::waitForPnp();
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 1u);
}

TEST_F(PnpThreads, ChildrenComeAndGoWhileOthersLook) {
  startBus();
  bool isDone = false;
  std::thread looker([&] {
    auto const record = std::make_unique<ntoshost::DeviceRecord>();
    while (!__atomic_load_n(&isDone, __ATOMIC_ACQUIRE)) {
      DEVICE_OBJECT* const child = ntoshost::childOf(m_bus, 0);
      if (child != nullptr) ntoshost::findDevice(child, *record);
    }
  });
  std::thread asker([&] {
    while (!__atomic_load_n(&isDone, __ATOMIC_ACQUIRE)) ntoshost::enumerateDevice(m_bus);
  });
  for (int i = 0; i < 30; ++i) {
    TestChild& one = plugLocked("one");
    IoInvalidateDeviceRelations(m_bus, BusRelations);
    ntoshost::waitForPnp();
    unplugLocked(one);
    IoInvalidateDeviceRelations(m_bus, BusRelations);
    ntoshost::waitForPnp();
  }
  __atomic_store_n(&isDone, true, __ATOMIC_RELEASE);
  looker.join();
  asker.join();
  EXPECT_EQ(ntoshost::childrenOf(m_bus), 0u);
}

}  // namespace
