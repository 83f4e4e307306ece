// Who is let in by the device over which programs send requests, whichever module has it.

#include "conformance/harness.h"
#include "driver/tOpenDevice.h"
#include "guards/tWatchedImport.h"
#include "ntos/driver.h"
#include "ntos/io.h"
#include "ntos/security.h"
#include "ntos/status.h"
#include "ntos/string.h"
#include "support/tDeviceRequest.h"
#include "wine/wineKernel.h"

namespace {

constexpr ACCESS_MASK kReadControl = 0x20000;
constexpr u32 kDescriptorSize = 256;

// What one entry says; the identifier follows it.
struct tEntry {
  ACE_HEADER header;
  ACCESS_MASK access;
  u8 identifier[1];
};

// S-1-5-18, the system, and S-1-5-32-544, the administrators.
constexpr u8 kSystem[] = {1, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0};
constexpr u8 kAdministrators[] = {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2, 0, 0};

template <u32 size>
bool isFor(tEntry const& entry, u8 const (&identifier)[size]) {
  return entry.header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
         __builtin_memcmp(entry.identifier, identifier, size) == 0;
}

constinit BOOLEAN answer = 0;
constinit DEVICE_OBJECT* askingDevice = nullptr;

BOOLEAN answerFor(IRP* request) {
  askingDevice = IoGetCurrentIrpStackLocation(request)->DeviceObject;
  return answer;
}

// Stands for the kernel's word on who asks while it lives.
class tAnswer {
 public:
  explicit tAnswer(bool is32Bit) : import("IoIs32bitProcess", reinterpret_cast<void*>(&answerFor)) {
    answer = is32Bit;
    askingDevice = nullptr;
  }

 private:
  tWatchedImport import;
};

// The device itself.
DEVICE_OBJECT* findDevice() {
  tOpenDevice device;
  device.name("nobody");
  tAnswer const is64Bit(false);
  return device.deliver() == STATUS_SUCCESS ? askingDevice : nullptr;
}

constinit u32 printed = 0;

u32 notePrint(u32 /*component*/, u32 /*level*/, char const* /*format*/, __builtin_va_list) {
  ++printed;
  return STATUS_SUCCESS;
}

NTSTATUS querySecurity(void* descriptor, u32 size) {
  HANDLE device = nullptr;
  NTSTATUS ended = ObOpenObjectByPointer(askingDevice, OBJ_KERNEL_HANDLE, nullptr, kReadControl,
                                         nullptr, KernelMode, &device);
  if (!NT_SUCCESS(ended)) return ended;
  u32 needed = 0;
  ended = ZwQuerySecurityObject(device, DACL_SECURITY_INFORMATION, descriptor, size, &needed);
  ZwClose(device);
  return ended;
}

}  // namespace

TEST(DeviceAccess, TheListNamesTheSystemAndAdministratorsAlone) {
  tOpenDevice device;
  ASSERT_EQ(device.status, STATUS_SUCCESS);
  device.name("nobody");
  tAnswer const is64Bit(false);
  ASSERT_EQ(device.deliver(), STATUS_SUCCESS);
  ASSERT_TRUE(askingDevice != nullptr);
  alignas(8) u8 descriptor[kDescriptorSize] = {};
  ASSERT_EQ(querySecurity(descriptor, sizeof(descriptor)), STATUS_SUCCESS);
  auto const& head = *reinterpret_cast<SECURITY_DESCRIPTOR_RELATIVE const*>(descriptor);
  ASSERT_TRUE((head.Control & SE_DACL_PRESENT) != 0 && head.Dacl != 0);
  auto const& list = *reinterpret_cast<ACL const*>(descriptor + head.Dacl);
  ASSERT_EQ(list.AceCount, 2);
  auto const* const first = reinterpret_cast<tEntry const*>(&list + 1);
  auto const* const second =
      reinterpret_cast<tEntry const*>(reinterpret_cast<u8 const*>(first) + first->header.AceSize);
  EXPECT_TRUE(isFor(*first, kSystem));
  EXPECT_TRUE(isFor(*second, kAdministrators));
}

TEST(DeviceAccess, ProgramsOf32BitsAreRefused) {
  tOpenDevice device;
  ASSERT_EQ(device.status, STATUS_SUCCESS);
  device.name("nobody");
  tAnswer const is32Bit(true);
  EXPECT_EQ(device.deliver(), STATUS_NOT_SUPPORTED);
  EXPECT_TRUE(askingDevice != nullptr);
}

TEST(DeviceAccess, ARequestIsCompletedWithTheStatusThatIsReturned) {
  DEVICE_OBJECT* const device = findDevice();
  ASSERT_TRUE(device != nullptr);
  tDeviceRequest control(device, IRP_MJ_DEVICE_CONTROL);
  control.ioStatus().Information = 7;
  EXPECT_EQ(control.send(), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(control.status(), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(control.ioStatus().Information, u64{0});
  EXPECT_EQ(control.completions(), 1);
  tDeviceRequest cleanup(device, IRP_MJ_CLEANUP);
  cleanup.ioStatus().Information = 7;
  EXPECT_EQ(cleanup.send(), STATUS_SUCCESS);
  EXPECT_EQ(cleanup.status(), STATUS_SUCCESS);
  EXPECT_EQ(cleanup.ioStatus().Information, u64{0});
  EXPECT_EQ(cleanup.completions(), 1);
}

// A second file of the driver finds the name taken, and takes nothing away.
TEST(DeviceAccess, ADriverThatCannotMakeTheDeviceTellsSoAndDoesNotStart) {
  UNICODE_STRING key;
  RtlInitUnicodeString(&key,
                       L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\oxdiagcontrol2");
  {
    tWatchedImport const prints("vDbgPrintEx", reinterpret_cast<void*>(&notePrint));
    ASSERT_TRUE(prints.countModules() > 0);
    printed = 0;
    EXPECT_EQ(ZwLoadDriver(&key), STATUS_OBJECT_NAME_COLLISION);
    EXPECT_EQ(printed, u32{1});
  }
  EXPECT_TRUE(findDevice() != nullptr);
}
