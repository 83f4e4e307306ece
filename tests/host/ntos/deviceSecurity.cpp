// Who may open a device.

#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "ntoshost/security.h"
#include "testDriver.h"

namespace {

constexpr u32 kStranger = 54'321;

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

  DEVICE_OBJECT* m_device = nullptr;
  int m_requests = 0;
};

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
