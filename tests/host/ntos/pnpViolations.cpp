// What the PnP manager does not put up with.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "testBus.h"

namespace {

class PnpViolationsDeathTest : public BusTest {
 protected:
  // The next relations answer is this one, in a block of `type`.
  struct Answer {
    u32 count = 1;
    DEVICE_OBJECT* devices[2] = {};
    bool hasReferences = true;
    POOL_TYPE type = PagedPool;
  };

  NTSTATUS serveBus(IRP* request) override {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    bool const isRelations = location.MajorFunction == IRP_MJ_PNP &&
                             location.MinorFunction == IRP_MN_QUERY_DEVICE_RELATIONS;
    return isRelations && m_answer != nullptr ? answerRelations(request)
                                              : BusTest::serveBus(request);
  }

  NTSTATUS answerRelations(IRP* request) {
    size_t const size = sizeof(DEVICE_RELATIONS) + sizeof(void*);
    auto* const relations = static_cast<DEVICE_RELATIONS*>(
        ExAllocatePoolWithTag(m_answer->type, size, ntosPoolTag("test")));
    relations->Count = m_answer->count;
    for (int i = 0; i < 2; ++i) relations->Objects[i] = m_answer->devices[i];
    for (DEVICE_OBJECT* device : m_answer->devices) {
      if (device != nullptr && m_answer->hasReferences) ObfReferenceObject(device);
    }
    return complete(request, STATUS_SUCCESS, reinterpret_cast<u64>(relations));
  }

  void enumerateWith(Answer answer) {
    m_answer = &answer;
    ntoshost::enumerateDevice(m_bus);
    m_answer = nullptr;
  }

  // A child whose answers are this block.
  DEVICE_OBJECT* plugWith(void* block) {
    TestChild& child = plug("one");
    setDispatch(child.device, [block](DEVICE_OBJECT*, IRP* request) {
      return complete(request, STATUS_SUCCESS, reinterpret_cast<u64>(block));
    });
    return child.device;
  }

  void askWith(void* block) {
    wchar_t text[8];
    ntoshost::queryId(plugWith(block), BusQueryDeviceID, text, 8);
  }

  void askBusInformation(void* block) {
    PNP_BUS_INFORMATION information;
    ntoshost::queryBusInformation(plugWith(block), information);
  }

  Answer* m_answer = nullptr;
};

TEST_F(PnpViolationsDeathTest, AnswersAreBlocksOfPagedPool) {
  wchar_t own[4] = L"one";
  EXPECT_DEATH(askWith(own),
               "ntos: The driver answered with a text at 0x[0-9a-f]+, which is no block of the "
               "pool\\.\n$");
  EXPECT_DEATH(askWith(poolText("one", NonPagedPoolNx)),
               "The driver answered with a text at 0x[0-9a-f]+ in NonPagedPool; it has to be "
               "PagedPool\\.");
  EXPECT_DEATH(askWith(m_driver), "which is no block of the pool\\.");
  startBus();
  EXPECT_DEATH(enumerateWith({.count = 0, .type = NonPagedPoolNx}),
               "answered with device relations at 0x[0-9a-f]+ in NonPagedPool");
}

TEST_F(PnpViolationsDeathTest, TextsEndInTheirBlock) {
  EXPECT_DEATH(askWith(poolText("one")),
               "answered with a text at 0x[0-9a-f]+ that does not end in its block\\.");
}

TEST_F(PnpViolationsDeathTest, BusInformationIsWhole) {
  EXPECT_DEATH(askBusInformation(poolText("short")),
               "answered with bus information at 0x[0-9a-f]+ that is too short\\.");
}

TEST_F(PnpViolationsDeathTest, ARootDeviceHasAName) {
  DEVICE_OBJECT* device = nullptr;
  EXPECT_DEATH(ntoshost::addRootDevice(m_driver, "", &device),
               "A root device was given a name of 0 characters; it may have 1 to 63\\.");
  EXPECT_DEATH(ntoshost::addRootDevice(m_driver, std::string(64, 'a').c_str(), &device),
               "A root device was given a name of 64 characters");
}

TEST_F(PnpViolationsDeathTest, RelationsFitTheirBlock) {
  startBus();
  EXPECT_DEATH(enumerateWith({.count = 3}),
               "answered with device relations at 0x[0-9a-f]+ of 3 devices in 24 bytes\\.");
}

TEST_F(PnpViolationsDeathTest, RelationsAreOfReadyPhysicalDevices) {
  startBus();
  TestChild const& child = plug("one");
  EXPECT_DEATH(enumerateWith({.devices = {child.device}, .hasReferences = false}),
               "A bus lists the device at 0x[0-9a-f]+ without a reference on it\\.");
  EXPECT_DEATH(enumerateWith({.devices = {m_function}}),
               "A bus lists the device at 0x[0-9a-f]+, which is no physical device: it lies on "
               "another\\.");
  child.device->Flags |= DO_DEVICE_INITIALIZING;
  EXPECT_DEATH(enumerateWith({.devices = {child.device}}),
               "A bus lists the device at 0x[0-9a-f]+, which says DO_DEVICE_INITIALIZING\\.");
  child.device->Flags &= ~DO_DEVICE_INITIALIZING;
  EXPECT_DEATH(
      {
        ObfReferenceObject(child.device);
        IoDeleteDevice(child.device);
        enumerateWith({.devices = {child.device}});
      },
      "A bus lists the device at 0x[0-9a-f]+, which it has deleted\\.");
}

TEST_F(PnpViolationsDeathTest, ADeviceIsListedOnce) {
  startBus();
  TestChild const& child = plug("one");
  EXPECT_DEATH(enumerateWith({.count = 2, .devices = {child.device, child.device}}),
               "The bus at 0x[0-9a-f]+ lists the device at 0x[0-9a-f]+, which is listed "
               "already\\.");
}

TEST_F(PnpViolationsDeathTest, AddDeviceLeavesItsDeviceReady) {
  m_driver->DriverExtension->AddDevice = [](DRIVER_OBJECT* driver, DEVICE_OBJECT* physical) {
    DEVICE_OBJECT* device = nullptr;
    IoCreateDevice(driver, 0, nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device);
    IoAttachDeviceToDeviceStack(device, physical);
    return STATUS_SUCCESS;
  };
  DEVICE_OBJECT* bus = nullptr;
  EXPECT_DEATH(ntoshost::addRootDevice(m_driver, "TESTBUS", &bus),
               "AddDevice of the driver .Driver.tester has left the device at 0x[0-9a-f]+ with "
               "DO_DEVICE_INITIALIZING\\.");
}

TEST_F(PnpViolationsDeathTest, ARemovedDeviceIsDetached) {
  startBus();
  setDispatch(m_function, [this](DEVICE_OBJECT*, IRP* request) {
    IoSkipCurrentIrpStackLocation(request);
    return IoCallDriver(m_lower, request);
  });
  EXPECT_DEATH(ntoshost::surpriseRemoveDevice(m_bus),
               "The device at 0x[0-9a-f]+ is still attached to the one at 0x[0-9a-f]+ after the "
               "remove request\\.");
  setDispatch(m_function, [this](DEVICE_OBJECT*, IRP* request) { return serveBus(request); });
}

TEST_F(PnpViolationsDeathTest, RelationsAreInvalidatedOfDevicesInTheTree) {
  DEVICE_OBJECT* const device = makeDevice();
  EXPECT_DEATH(IoInvalidateDeviceRelations(device, BusRelations),
               "IoInvalidateDeviceRelations was given 0x[0-9a-f]+, which is no physical device of "
               "the tree\\.");
  IoDeleteDevice(device);
}

TEST_F(PnpViolationsDeathTest, ADriverDoesNotCallInFromARequest) {
  addBus();
  setDispatch(m_function, [this](DEVICE_OBJECT*, IRP* request) {
    ntoshost::startDevice(m_bus);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(ntoshost::startDevice(m_bus),
               "startDevice was called from within an operation of the PnP manager\\.");
  setDispatch(m_function, [this](DEVICE_OBJECT*, IRP* request) { return serveBus(request); });
}

TEST_F(PnpViolationsDeathTest, OperationsAreForPassiveLevel) {
  addBus();
  auto const raised = [this](KIRQL level) {
    KIRQL before;
    KeRaiseIrql(level, &before);
    if (level > DISPATCH_LEVEL) IoInvalidateDeviceRelations(m_bus, BusRelations);
    ntoshost::startDevice(m_bus);
  };
  EXPECT_DEATH(raised(APC_LEVEL), "startDevice was called at IRQL 1");
  EXPECT_DEATH(raised(3), "IoInvalidateDeviceRelations was called at IRQL 3");
}

}  // namespace
