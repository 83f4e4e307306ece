#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ntoshost/pnp.h"
#include "testDriver.h"

// A bus for tests: a function device on a root device, and children that are listed or not. It
// writes down which requests its devices get, such as "bus start, one start".

// What a child answers, and what it is.
struct TestChild {
  std::string name;
  DEVICE_OBJECT* device = nullptr;
  bool isListed = true;
  bool isKnown = false;  // was in an answer
  bool isDeleted = false;
  bool isRaw = true;  // needs no function driver
  NTSTATUS capabilities = STATUS_SUCCESS;
  NTSTATUS queryRemove = STATUS_SUCCESS;
  NTSTATUS queryStop = STATUS_SUCCESS;
  NTSTATUS queryPower = STATUS_SUCCESS;
  NTSTATUS start = STATUS_SUCCESS;
  NTSTATUS id = STATUS_SUCCESS;
};

// A block of the pool with the characters of the text, its last one included.
inline void* poolText(std::string_view text, POOL_TYPE type = PagedPool) {
  size_t const size = text.size() * sizeof(wchar_t);
  auto* const block = static_cast<wchar_t*>(ExAllocatePoolWithTag(type, size, ntosPoolTag("test")));
  if (block != nullptr) std::copy(text.begin(), text.end(), block);
  return block;
}

class BusTest : public DriverTest {
 protected:
  BusTest() {
    s_test = this;
    m_driver->DriverExtension->AddDevice = addDevice;
    ntoshost::setPnpMode(ntoshost::PnpMode::OnRequest);
  }
  ~BusTest() override {
    ntoshost::clearFaults();
    ntoshost::setChildrenStart(true);
    if (m_bus != nullptr && ntoshost::childrenOf(nullptr) != 0) {
      EXPECT_EQ(ntoshost::surpriseRemoveDevice(m_bus), STATUS_SUCCESS);
    }
    ntoshost::runPnpWork();
    ntoshost::setPnpMode(ntoshost::PnpMode::Worker);
    ntoshost::waitForPnp();
  }

  void addBus() { ASSERT_EQ(ntoshost::addRootDevice(m_driver, "TESTBUS", &m_bus), STATUS_SUCCESS); }

  void startBus() {
    addBus();
    ASSERT_EQ(ntoshost::startDevice(m_bus), STATUS_SUCCESS);
  }

  // A child that the bus lists from the next time on.
  TestChild& plug(char const* name) {
    auto child = std::make_unique<TestChild>();
    TestChild& plugged = *child;
    plugged.name = name;
    plugged.device = makeDevice(
        [this, &plugged](DEVICE_OBJECT*, IRP* request) { return serveChild(plugged, request); });
    std::lock_guard const lock(m_lock);
    m_children.push_back(std::move(child));
    return plugged;
  }

  void unplug(TestChild& child) {
    child.isListed = false;
    IoInvalidateDeviceRelations(m_bus, BusRelations);
  }

  // What was asked for since the last time.
  std::string takeLog() {
    std::lock_guard const lock(m_lock);
    return std::exchange(m_log, "");
  }

  static ntoshost::DeviceState stateOf(DEVICE_OBJECT* device) {
    auto const record = std::make_unique<ntoshost::DeviceRecord>();
    EXPECT_TRUE(ntoshost::findDevice(device, *record));
    return record->state;
  }

  static NTSTATUS addDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
    BusTest& test = *s_test;
    if (!NT_SUCCESS(test.m_addStatus)) return test.m_addStatus;
    NTSTATUS const status =
        IoCreateDevice(driver, 0, nullptr, FILE_DEVICE_BUS_EXTENDER, 0, 0, &test.m_function);
    if (!NT_SUCCESS(status)) return status;
    finish(test.m_function,
           [&test](DEVICE_OBJECT*, IRP* request) { return test.serveBus(request); });
    test.m_lower = IoAttachDeviceToDeviceStack(test.m_function, physical);
    return test.m_lower != nullptr ? STATUS_SUCCESS : STATUS_NO_SUCH_DEVICE;
  }

  virtual NTSTATUS serveBus(IRP* request) {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    write("bus", location);
    if (location.MajorFunction == IRP_MJ_PNP) {
      if (location.MinorFunction == IRP_MN_QUERY_DEVICE_RELATIONS) return list(request);
      if (location.MinorFunction == IRP_MN_REMOVE_DEVICE) return removeBus(request);
    } else if (location.MajorFunction != IRP_MJ_POWER) {
      return complete(request, STATUS_SUCCESS);
    }
    IoSkipCurrentIrpStackLocation(request);
    return IoCallDriver(m_lower, request);
  }

  NTSTATUS list(IRP* request) {
    std::vector<DEVICE_OBJECT*> devices;
    for (auto& child : m_children) {
      child->isKnown = child->isListed && !child->isDeleted;
      if (child->isKnown) devices.push_back(child->device);
    }
    auto* const relations = static_cast<DEVICE_RELATIONS*>(ExAllocatePoolWithTag(
        PagedPool, sizeof(DEVICE_RELATIONS) + devices.size() * sizeof(void*), ntosPoolTag("test")));
    if (relations == nullptr) return complete(request, STATUS_INSUFFICIENT_RESOURCES);
    relations->Count = static_cast<u32>(devices.size());
    for (size_t i = 0; i < devices.size(); ++i) {
      ObfReferenceObject(devices[i]);
      relations->Objects[i] = devices[i];
    }
    return complete(request, STATUS_SUCCESS, reinterpret_cast<u64>(relations));
  }

  // The children that nobody has deleted go with the bus.
  NTSTATUS removeBus(IRP* request) {
    for (auto& child : m_children) remove(*child);
    DEVICE_OBJECT* const function = m_function;
    IoSkipCurrentIrpStackLocation(request);
    NTSTATUS const status = IoCallDriver(m_lower, request);
    IoDetachDevice(m_lower);
    IoDeleteDevice(function);
    return status;
  }

  static void remove(TestChild& child) {
    if (child.isDeleted) return;
    child.isDeleted = true;
    IoDeleteDevice(child.device);
  }

  virtual NTSTATUS serveChild(TestChild& child, IRP* request) {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    write(child.name, location);
    if (location.MajorFunction == IRP_MJ_POWER) {
      return complete(request, location.MinorFunction == IRP_MN_QUERY_POWER ? child.queryPower
                                                                            : STATUS_SUCCESS);
    }
    if (location.MajorFunction != IRP_MJ_PNP) return complete(request, STATUS_SUCCESS);
    return servePnp(child, request, location);
  }

  NTSTATUS servePnp(TestChild& child, IRP* request, IO_STACK_LOCATION const& location) {
    switch (location.MinorFunction) {
      case IRP_MN_QUERY_ID:
        return answerId(child, request, location.Parameters.QueryId.IdType);
      case IRP_MN_QUERY_CAPABILITIES:
        if (child.isRaw) {
          location.Parameters.DeviceCapabilities.Capabilities->Flags |=
              kDeviceCapabilityRawDeviceOK;
        }
        return complete(request, child.capabilities);
      case IRP_MN_QUERY_REMOVE_DEVICE:
        return complete(request, child.queryRemove);
      case IRP_MN_QUERY_STOP_DEVICE:
        return complete(request, child.queryStop);
      case IRP_MN_START_DEVICE:
        return complete(request, child.start);
      case IRP_MN_REMOVE_DEVICE:
        if (!child.isListed) remove(child);
        return complete(request, STATUS_SUCCESS);
      case IRP_MN_SURPRISE_REMOVAL:
      case IRP_MN_STOP_DEVICE:
      case IRP_MN_CANCEL_REMOVE_DEVICE:
      case IRP_MN_CANCEL_STOP_DEVICE:
        return complete(request, STATUS_SUCCESS);
      default:
        return complete(request, request->IoStatus.Status, request->IoStatus.Information);
    }
  }

  static NTSTATUS answerId(TestChild& child, IRP* request, BUS_QUERY_ID_TYPE type) {
    if (!NT_SUCCESS(child.id)) return complete(request, child.id);
    std::string text = "TEST\\" + child.name + '\0';
    if (type == BusQueryHardwareIDs) text += "TEST\\any" + std::string(2, '\0');
    if (type == BusQueryCompatibleIDs) return complete(request, STATUS_NOT_SUPPORTED);
    void* const block = poolText(text);
    if (block == nullptr) return complete(request, STATUS_INSUFFICIENT_RESOURCES);
    return complete(request, STATUS_SUCCESS, reinterpret_cast<u64>(block));
  }

  // Questions are not written down, but for those that change something.
  void write(std::string const& who, IO_STACK_LOCATION const& location) {
    std::string const what = wordFor(location);
    std::lock_guard const lock(m_lock);
    if (!what.empty()) m_log += (m_log.empty() ? "" : ", ") + who + " " + what;
  }

  static std::string wordFor(IO_STACK_LOCATION const& location) {
    if (location.MajorFunction == IRP_MJ_POWER) {
      return (location.MinorFunction == IRP_MN_SET_POWER ? "power " : "power? ") +
             std::to_string(location.Parameters.Power.State.SystemState);
    }
    if (location.MajorFunction != IRP_MJ_PNP) return "";
    switch (location.MinorFunction) {
      case IRP_MN_START_DEVICE:
        return "start";
      case IRP_MN_QUERY_REMOVE_DEVICE:
        return "remove?";
      case IRP_MN_REMOVE_DEVICE:
        return "remove";
      case IRP_MN_CANCEL_REMOVE_DEVICE:
        return "keep";
      case IRP_MN_QUERY_STOP_DEVICE:
        return "stop?";
      case IRP_MN_STOP_DEVICE:
        return "stop";
      case IRP_MN_CANCEL_STOP_DEVICE:
        return "go on";
      case IRP_MN_SURPRISE_REMOVAL:
        return "surprise";
      default:
        return "";
    }
  }

  static inline BusTest* s_test = nullptr;

  DEVICE_OBJECT* m_bus = nullptr;  // physical
  DEVICE_OBJECT* m_function = nullptr;
  DEVICE_OBJECT* m_lower = nullptr;
  NTSTATUS m_addStatus = STATUS_SUCCESS;
  std::vector<std::unique_ptr<TestChild>> m_children;
  std::mutex m_lock;
  std::string m_log;
};
