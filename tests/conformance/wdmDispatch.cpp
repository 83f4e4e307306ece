// Which requests go where: to a child of a bus, or to the platform.

#include "conformance/harness.h"
#include "oxdiagk/package.h"
#include "package/windows/moduleRecord.h"
#include "support/tBusStack.h"
#include "support/tEventsSince.h"

using namespace nOXDIAG100;

namespace {

// Whether the table has a row for the kind of request.
bool hasRow(u8 major) {
  switch (major) {
    case IRP_MJ_CREATE:
    case IRP_MJ_CLOSE:
    case IRP_MJ_CLEANUP:
    case IRP_MJ_DEVICE_CONTROL:
    case IRP_MJ_INTERNAL_DEVICE_CONTROL:
    case IRP_MJ_POWER:
    case IRP_MJ_SYSTEM_CONTROL:
    case IRP_MJ_PNP:
      return true;
    default:
      return false;
  }
}

bool isRefused(DEVICE_OBJECT* device, u8 major) {
  tDeviceRequest request(device, major);
  return request.send() == STATUS_INVALID_DEVICE_REQUEST && request.completions() == 1 &&
         request.status() == STATUS_INVALID_DEVICE_REQUEST;
}

// The module's record, of which the package record is the second half.
tModuleRecord& moduleRecordOfPackage() {
  auto* const package = reinterpret_cast<u8*>(pkgSetLegacyWrapperLoadState(0));
  return *reinterpret_cast<tModuleRecord*>(package - offsetof(tModuleRecord, package));
}

// Puts an entry in the place of the module's own for a while.
class tEntryInstead {
 public:
  explicit tEntryInstead(tModuleEntry* entry) : before(moduleRecordOfPackage().info.entry) {
    moduleRecordOfPackage().info.entry = entry;
  }
  ~tEntryInstead() { moduleRecordOfPackage().info.entry = before; }
  tEntryInstead(tEntryInstead const&) = delete;
  tEntryInstead& operator=(tEntryInstead const&) = delete;

 private:
  tModuleEntry* before;
};

u32 seenReason = 0;

i32 failingEntry(u32 reason) {
  seenReason = reason;
  return -1;
}

}  // namespace

TEST(WDMDispatch, AChildIsNotOpened) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const child = stack.add(1, 1);
  tEventsSince const events;
  EXPECT_TRUE(isRefused(child, IRP_MJ_CREATE));
  EXPECT_TRUE(isRefused(child, IRP_MJ_CLEANUP));
  EXPECT_TRUE(isRefused(child, IRP_MJ_CLOSE));
  EXPECT_EQ(events.count("oxdiagk.dll"), 0);
}

TEST(WDMDispatch, AChildRefusesWhatHasNoRow) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const child = stack.add(1, 1);
  for (u8 major = 0; major <= IRP_MJ_MAXIMUM_FUNCTION; ++major) {
    EXPECT_TRUE(hasRow(major) || isRefused(child, major));
  }
}

TEST(WDMDispatch, AChildKeepsTheStatusOfSystemControl) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const child = stack.add(1, 1);
  NTSTATUS const statuses[] = {STATUS_NOT_SUPPORTED, STATUS_SUCCESS, STATUS_DISK_FULL};
  for (NTSTATUS status : statuses) {
    tDeviceRequest request(child, IRP_MJ_SYSTEM_CONTROL);
    request.ioStatus().Information = 77;
    EXPECT_EQ(request.sendPastTheKernel(status), status);
    EXPECT_EQ(request.completions(), 1);
    EXPECT_EQ(request.status(), status);
    EXPECT_EQ(request.ioStatus().Information, 77u);
  }
}

TEST(WDMDispatch, APlatformsDevicePassesOnWhatHasNoRow) {
  tBusStack stack;
  for (u8 major = 0; major <= IRP_MJ_MAXIMUM_FUNCTION; ++major) {
    if (hasRow(major)) continue;
    int const before = stack.floorRequests;
    tDeviceRequest request(stack.bus(), major);
    EXPECT_EQ(request.send(), STATUS_SUCCESS);
    EXPECT_EQ(request.completions(), 1);
    EXPECT_EQ(stack.floorRequests, before + 1);
    EXPECT_EQ(stack.seenMajor, major);
  }
}

TEST(WDMDispatch, APlatformsDevicePassesOnPowerAndSystemControl) {
  tBusStack stack;
  u8 const majors[] = {IRP_MJ_POWER, IRP_MJ_SYSTEM_CONTROL};
  for (u8 major : majors) {
    tDeviceRequest request(stack.bus(), major, 3);
    EXPECT_EQ(request.send(), STATUS_SUCCESS);
    EXPECT_EQ(stack.seenMajor, major);
    EXPECT_EQ(stack.seenMinor, 3);
  }
  EXPECT_EQ(stack.floorRequests, 2);
}

TEST(WDMDispatch, AKindAboveTheHighestIsNotTouched) {
  tBusStack stack;
  stack.startBus();
  DEVICE_OBJECT* const child = stack.add(1, 1);
  int const before = stack.floorRequests;
  u8 const majors[] = {0x1C, 0x80, 0xFF};
  for (u8 major : majors) {
    DEVICE_OBJECT* const devices[] = {stack.bus(), child};
    for (DEVICE_OBJECT* device : devices) {
      tDeviceRequest request(device, major);
      EXPECT_EQ(request.sendPastTheKernel(), STATUS_UNSUCCESSFUL);
      EXPECT_EQ(request.completions(), 0);
      EXPECT_EQ(request.status(), STATUS_NOT_SUPPORTED);
    }
  }
  EXPECT_EQ(stack.floorRequests, before);
}

TEST(WDMDispatch, TheModuleIsToldOfOpeningAndClosing) {
  tBusStack stack;
  tEventsSince const events;
  EXPECT_EQ(tDeviceRequest(stack.bus(), IRP_MJ_CREATE).send(), STATUS_SUCCESS);
  EXPECT_EQ(events.count("oxdiagk.dll open: "), 1);
  EXPECT_EQ(events.count("oxdiagk.dll close: "), 0);
  EXPECT_EQ(tDeviceRequest(stack.bus(), IRP_MJ_CLEANUP).send(), STATUS_SUCCESS);
  EXPECT_EQ(events.count("oxdiagk.dll close: "), 1);
  EXPECT_EQ(tDeviceRequest(stack.bus(), IRP_MJ_CLOSE).send(), STATUS_SUCCESS);
  EXPECT_EQ(events.count("oxdiagk.dll"), 2);
  EXPECT_EQ(stack.floorRequests, 0);
}

TEST(WDMDispatch, AModuleThatFailsIsNotOpened) {
  tBusStack stack;
  tEntryInstead const instead(&failingEntry);
  tEventsSince const events;
  tDeviceRequest request(stack.bus(), IRP_MJ_CREATE);
  EXPECT_EQ(request.send(), STATUS_DRIVER_INTERNAL_ERROR);
  EXPECT_EQ(request.completions(), 1);
  EXPECT_EQ(request.status(), STATUS_DRIVER_INTERNAL_ERROR);
  EXPECT_EQ(seenReason, kModuleOpen);
  EXPECT_EQ(events.count("oxdiagk.dll open: "), 1);
  EXPECT_EQ(events.count("ssKernelExportDriver .\\source\\package\\windows\\clientPkgExportDriver:"
                         "124 - ssMain(2) of oxdiagk failed with status -1"),
            1);
}

TEST(WDMDispatch, AModuleThatFailsIsClosedAllTheSame) {
  tBusStack stack;
  tEntryInstead const instead(&failingEntry);
  tEventsSince const events;
  EXPECT_EQ(tDeviceRequest(stack.bus(), IRP_MJ_CLEANUP).send(), STATUS_SUCCESS);
  EXPECT_EQ(seenReason, kModuleClose);
  EXPECT_EQ(events.count("oxdiagk.dll close: "), 1);
  EXPECT_EQ(events.count("ssKernelExportDriver"), 1);
}
