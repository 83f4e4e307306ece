// Who is let in by the device over which programs send requests, whichever module has it.

#include "conformance/harness.h"
#include "driver/tOpenDevice.h"
#include "guards/tWatchedImport.h"
#include "ntos/io.h"
#include "ntos/security.h"
#include "ntos/status.h"
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
