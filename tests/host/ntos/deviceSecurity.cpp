// Who may open a device.

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "ntos/file.h"
#include "ntos/security.h"
#include "ntoshost/security.h"
#include "testDriver.h"

namespace {

constexpr u32 kStranger = 54'321;

struct Entry {
  ACE_HEADER header = {ACCESS_ALLOWED_ACE_TYPE, 0, sizeof(Entry)};
  ACCESS_MASK access = GENERIC_ALL;
  u8 revision = 1;
  u8 count = 2;
  u8 authority[6] = {0, 0, 0, 0, 0, 5};
  u32 numbers[2] = {32, 544};  // administrators
};

Entry entryOfUsers(ACCESS_MASK access) {
  return {.access = access, .numbers = {32, 545}};
}

// A list as drivers give it to the kernel.
struct Descriptor {
  SECURITY_DESCRIPTOR_RELATIVE head = {
      SECURITY_DESCRIPTOR_REVISION,        0, SE_DACL_PRESENT | SE_SELF_RELATIVE, 0, 0, 0,
      sizeof(SECURITY_DESCRIPTOR_RELATIVE)};
  ACL list = {ACL_REVISION, 0, sizeof(ACL) + 2 * sizeof(Entry), 2, 0};
  Entry entries[2];
};

class DeviceSecurity : public DriverTest {
 protected:
  DeviceSecurity() {
    m_device = makeDevice([this](DEVICE_OBJECT*, IRP* request) {
      ++m_requests;
      return complete(request, STATUS_SUCCESS);
    });
  }
  ~DeviceSecurity() override {
    ntoshost::setCallerUser(ntoshost::kOwnUser);
    IoDeleteDevice(m_device);
  }

  NTSTATUS openAs(u32 user) {
    ntoshost::setCallerUser(user);
    FILE_OBJECT* file = nullptr;
    NTSTATUS const status = ntoshost::openDevice(m_device, &file);
    EXPECT_EQ(file != nullptr, NT_SUCCESS(status));
    if (file != nullptr) ntoshost::closeDevice(file);
    return status;
  }

  bool secure(char const* text) { return ntoshost::setDeviceSecurity(m_device, text); }

  NTSTATUS secure(Descriptor const& descriptor) {
    HANDLE handle = nullptr;
    EXPECT_EQ(ObOpenObjectByPointer(m_device, OBJ_KERNEL_HANDLE, nullptr, WRITE_DAC, nullptr,
                                    KernelMode, &handle),
              STATUS_SUCCESS);
    NTSTATUS const status = ZwSetSecurityObject(handle, DACL_SECURITY_INFORMATION, &descriptor);
    ZwClose(handle);
    return status;
  }

  DEVICE_OBJECT* m_device = nullptr;
  int m_requests = 0;
};

using DeviceSecurityDeathTest = DeviceSecurity;

TEST_F(DeviceSecurity, WithoutOneEverybodyOpens) {
  EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS);
  EXPECT_EQ(openAs(0), STATUS_SUCCESS);
}

TEST_F(DeviceSecurity, AStrangerIsKeptOut) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;SY)(A;;GA;;;BA)"));
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
  EXPECT_EQ(m_requests, 0);
  EXPECT_EQ(openAs(geteuid()), STATUS_SUCCESS);
  EXPECT_EQ(openAs(0), STATUS_SUCCESS);
  EXPECT_EQ(openAs(ntoshost::kOwnUser), STATUS_SUCCESS);
}

TEST_F(DeviceSecurity, ReadingAloneIsNotEnough) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;BA)(A;;GR;;;WD)"));
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
  ASSERT_TRUE(secure("D:P(A;;GA;;;BA)(A;;GRGW;;;WD)"));
  EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS);
  ASSERT_TRUE(secure("D:(A;;GR;;;BU)(A;;FW;;;AU)"));
  EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS);
}

TEST_F(DeviceSecurity, TheSystemAloneIsRoot) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;SY)"));
  EXPECT_EQ(openAs(0), STATUS_SUCCESS);
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
}

TEST_F(DeviceSecurity, AnEmptyListLetsNobodyIn) {
  ASSERT_TRUE(secure("D:P"));
  EXPECT_EQ(openAs(0), STATUS_ACCESS_DENIED);
  ASSERT_TRUE(secure(nullptr));
  EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS);
}

TEST_F(DeviceSecurity, TheUserIsTheThreads) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;BA)"));
  ntoshost::setCallerUser(kStranger);
  std::thread([&] {
    FILE_OBJECT* file = nullptr;
    EXPECT_EQ(ntoshost::openDevice(m_device, &file), STATUS_SUCCESS);
    if (file != nullptr) ntoshost::closeDevice(file);
  }).join();
}

TEST_F(DeviceSecurity, AListOfTheDriversIsChecked) {
  EXPECT_FALSE(ntoshost::hasOwnSecurity(m_device));
  EXPECT_EQ(secure(Descriptor{}), STATUS_SUCCESS);
  EXPECT_TRUE(ntoshost::hasOwnSecurity(m_device));
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
  EXPECT_EQ(m_requests, 0);
  EXPECT_EQ(openAs(geteuid()), STATUS_SUCCESS);
  EXPECT_EQ(openAs(0), STATUS_SUCCESS);
}

TEST_F(DeviceSecurity, TheRightsOfItsEntriesCount) {
  constexpr ACCESS_MASK kFileRead = 0x120089;
  constexpr ACCESS_MASK kFileWrite = 0x120116;
  Descriptor descriptor;
  for (ACCESS_MASK access : {GENERIC_READ, GENERIC_WRITE, kFileRead, kFileWrite, WRITE_DAC}) {
    descriptor.entries[1] = entryOfUsers(access);
    EXPECT_EQ(secure(descriptor), STATUS_SUCCESS);
    EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED) << access;
  }
  for (ACCESS_MASK access : {GENERIC_READ | GENERIC_WRITE, kFileRead | kFileWrite, GENERIC_ALL}) {
    descriptor.entries[1] = entryOfUsers(access);
    EXPECT_EQ(secure(descriptor), STATUS_SUCCESS);
    EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS) << access;
  }
}

TEST_F(DeviceSecurity, EntriesForOthersCountForNothing) {
  Descriptor descriptor;
  descriptor.entries[1] = {.numbers = {32, 546}};
  EXPECT_EQ(secure(descriptor), STATUS_SUCCESS);
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
  constexpr u8 kInheritOnly = 8;
  descriptor.entries[1] = entryOfUsers(GENERIC_ALL);
  descriptor.entries[1].header.AceFlags = kInheritOnly;
  EXPECT_EQ(secure(descriptor), STATUS_SUCCESS);
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
}

TEST_F(DeviceSecurity, ALaterOneTakesThePlaceOfTheOther) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;WD)"));
  EXPECT_EQ(secure(Descriptor{}), STATUS_SUCCESS);
  EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED);
  ASSERT_TRUE(secure("D:P(A;;GA;;;WD)"));
  EXPECT_EQ(openAs(kStranger), STATUS_SUCCESS);
}

TEST_F(DeviceSecurityDeathTest, WhatIsNoListIsRefused) {
  constexpr char kSentence[] = "ntos: ZwSetSecurityObject was given something else than a list";
  constexpr u8 kDenied = 1;
  Descriptor descriptor;
  descriptor.entries[1].header.AceType = kDenied;
  EXPECT_DEATH(secure(descriptor), kSentence);
  descriptor = {};
  for (u16 size : {u16{0}, u16{15}, u16{23}, u16{28}}) {
    descriptor.entries[1].header.AceSize = size;
    EXPECT_DEATH(secure(descriptor), kSentence) << size;
  }
  descriptor = {};
  descriptor.entries[1].count = 3;
  EXPECT_DEATH(secure(descriptor), kSentence);
  descriptor = {};
  for (u16 size : {u16{0}, u16{7}, u16{8}, u16{55}}) {
    descriptor.list.AclSize = size;
    EXPECT_DEATH(secure(descriptor), kSentence) << size;
  }
  descriptor = {};
  descriptor.list.AceCount = 3;
  EXPECT_DEATH(secure(descriptor), kSentence);
}

TEST_F(DeviceSecurity, OtherTextsChangeNothing) {
  ASSERT_TRUE(secure("D:P(A;;GA;;;SY)"));
  for (char const* text : {"", "P", "D:X", "D:P(", "D:P(A;;GA;;;SY", "D:P(D;;GA;;;WD)",
                           "D:P(A;;;;;WD)", "D:P(A;;GA;;;XX)", "D:P(A;;G", "D:P(A;;GAG;;;WD)",
                           "D:P(A;;GA;;;WD) ", "O:BAD:P(A;;GA;;;WD)"}) {
    EXPECT_FALSE(secure(text)) << text;
    EXPECT_EQ(openAs(kStranger), STATUS_ACCESS_DENIED) << text;
  }
}

}  // namespace
