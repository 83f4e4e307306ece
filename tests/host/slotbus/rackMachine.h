#pragma once

// A rack of a test's own in the executive's machine.

#include <string>

#include "slotbus/component/busDriver.h"
#include "slotbus/component/slotControl.h"
#include "slotbus/component/slotbus.h"
#include "slotbusSupport.h"

// Gives a text, and traces on a stream that keeps what is traced.
class tTextRack : public nSLOTBUS100::iRackSource {
 public:
  explicit tTextRack(std::string rackText) : text(std::move(rackText)), stream(destination) {}

  void read(nSLOTBUS100::iRackTaker& taker) override {
    ++reads;
    nSLOTBUS100::readRackText(text.data(), text.size(), stream, nullptr, &taker);
  }

  std::string text;
  int reads = 0;

 private:
  tKeepingDestination destination;
  tKeepingStream stream;
};

constexpr char kThreeSlots[] =
    "4 | 100 | RACK\\A-1, RACK\\A | first\n"
    "7 | 200 | RACK\\B | second\n"
    "9 | 0x100000000 | RACK\\C | third\n";

// The component's driver, loaded; nothing of it is left behind at the end.
class tSlotbusMachine : public testing::Test {
 protected:
  void SetUp() override {
    source = &rack;
    for (wchar_t const* id : kIds) ASSERT_TRUE(ntoshost::assignNullDriver(id));
    ASSERT_EQ(ntoshost::loadDriver("slotbus", enter, &driver), STATUS_SUCCESS);
  }
  void TearDown() override {
    ntoshost::clearFaults();
    if (bus != nullptr) ntoshost::removeRootDevice(bus);
    EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_SUCCESS);
    for (wchar_t const* id : kIds) ntoshost::assignDriver(id, nullptr);
    ntoshost::requireNoDevices("the test");
  }

  NTSTATUS plugIn() {
    NTSTATUS const added = ntoshost::addRootDevice(driver, "SLOTBUS", &bus);
    return added == STATUS_SUCCESS ? start() : added;
  }
  NTSTATUS start() {
    NTSTATUS const status = ntoshost::startDevice(bus);
    ntoshost::waitForPnp();
    return status;
  }
  void pullOut() {
    ntoshost::removeRootDevice(bus);
    bus = nullptr;
  }

  u64 count() const { return ntoshost::childrenOf(bus); }
  DEVICE_OBJECT* slot(u64 index) const { return ntoshost::childOf(bus, index); }

  // Asks a device, opened or not, for its line.
  template <class Target>
  static NTSTATUS tellLine(Target* target, nSLOTBUS100::tSlotLine& line) {
    line = {};
    ntoshost::DeviceControl control;
    control.code = nSLOTBUS100::kControlTellLine;
    control.output = &line;
    control.outputLength = sizeof(line);
    return ntoshost::controlDevice(target, control);
  }

  tTextRack rack{kThreeSlots};
  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* bus = nullptr;

 private:
  static NTSTATUS enter(DRIVER_OBJECT* entered, UNICODE_STRING*) {
    nSLOTBUS100::becomeBusDriver(*entered, *source);
    entered->DriverUnload = [](DRIVER_OBJECT*) { nSLOTBUS100::ceaseBusDriver(); };
    return STATUS_SUCCESS;
  }

  static constexpr wchar_t const* kIds[] = {L"RACK\\A", L"RACK\\B", L"RACK\\C"};
  static inline tTextRack* source = nullptr;
};
