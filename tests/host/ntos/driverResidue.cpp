// What a driver leaves behind when it unloads.

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "ntos/sync.h"
#include "ntoshost/images.h"
#include "testDriver.h"

namespace {

constexpr u32 kTag = ntosPoolTag("left");

// A second driver, which unloads while the first one stays.
class DriverResidue : public DriverTest {
 protected:
  DriverResidue() {
    EXPECT_EQ(ntoshost::loadDriver("leaver", setAllDispatches, &m_leaver), STATUS_SUCCESS);
    ExInitializeFastMutex(&m_fastMutex);
    KeInitializeMutex(&m_mutex, 0);
  }
  ~DriverResidue() override {
    if (m_leaver != nullptr) {
      EXPECT_EQ(ntoshost::unloadDriver(m_leaver), STATUS_SUCCESS);
    }
  }

  // Has the driver's dispatch do it.
  template <class Work>
  static void within(DRIVER_OBJECT* driver, Work work) {
    DEVICE_OBJECT* device = nullptr;
    ASSERT_EQ(IoCreateDevice(driver, 0, nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device),
              STATUS_SUCCESS);
    finish(device, [work](DEVICE_OBJECT*, IRP* request) {
      work();
      return complete(request, STATUS_SUCCESS);
    });
    EXPECT_EQ(send(device), STATUS_SUCCESS);
    IoDeleteDevice(device);
  }

  static void* take(size_t size) { return ExAllocatePoolWithTag(NonPagedPoolNx, size, kTag); }

  std::string unload() {
    testing::internal::CaptureStderr();
    EXPECT_EQ(ntoshost::unloadDriver(m_leaver), STATUS_SUCCESS);
    m_leaver = nullptr;
    return testing::internal::GetCapturedStderr();
  }

  DRIVER_OBJECT* m_leaver = nullptr;
  FAST_MUTEX m_fastMutex;
  KMUTEX m_mutex;
};

using DriverResidueDeathTest = DriverResidue;

TEST_F(DriverResidue, BlocksAreOfTheDriverThatRan) {
  void* mine = nullptr;
  void* others = nullptr;
  within(m_leaver, [&] { mine = take(24); });
  within(m_driver, [&] { others = take(40); });
  void* const nobodys = take(8);
  EXPECT_EQ(ntoshost::residueOf(m_leaver).blocks, 1u);
  EXPECT_EQ(ntoshost::residueOf(m_leaver).bytes, 24u);
  EXPECT_EQ(ntoshost::residueOf(m_driver).bytes, 40u);
  ExFreePoolWithTag(mine, kTag);
  EXPECT_EQ(ntoshost::residueOf(m_leaver).blocks, 0u);
  ExFreePoolWithTag(others, kTag);
  ExFreePoolWithTag(nobodys, kTag);
}

TEST_F(DriverResidue, TheInnermostDriverCounts) {
  void* block = nullptr;
  within(m_driver, [&] { within(m_leaver, [&] { block = take(24); }); });
  EXPECT_EQ(ntoshost::residueOf(m_leaver).bytes, 24u);
  EXPECT_EQ(ntoshost::residueOf(m_driver).bytes, 0u);
  ExFreePoolWithTag(block, kTag);
}

TEST_F(DriverResidue, BlocksAreToldAtTheUnload) {
  void* blocks[3] = {};
  within(m_leaver, [&] {
    blocks[0] = take(24);
    blocks[1] = take(40);
  });
  within(m_driver, [&] { blocks[2] = take(100); });
  EXPECT_EQ(unload(),
            "ntos: The driver \\Driver\\leaver has unloaded; 2 pool blocks of together 64 bytes "
            "that were taken within it are left, the oldest with 24 bytes and tag 'left'.\n");
  for (void* block : blocks) ExFreePoolWithTag(block, kTag);
}

TEST_F(DriverResidue, WhatIsGivenBackIsNotTold) {
  within(m_leaver, [&] { ExFreePoolWithTag(take(24), kTag); });
  EXPECT_EQ(unload(), "");
}

TEST_F(DriverResidue, AFailedEntryIsToldToo) {
  static void* block = nullptr;
  auto const entry = [](DRIVER_OBJECT*, UNICODE_STRING*) {
    block = take(16);
    return STATUS_UNSUCCESSFUL;
  };
  DRIVER_OBJECT* driver = nullptr;
  testing::internal::CaptureStderr();
  EXPECT_EQ(ntoshost::loadDriver("failing", entry, &driver), STATUS_UNSUCCESSFUL);
  EXPECT_NE(
      testing::internal::GetCapturedStderr().find("The driver \\Driver\\failing has unloaded; "
                                                  "1 pool blocks of together 16 bytes"),
      std::string::npos);
  ExFreePoolWithTag(block, kTag);
}

TEST_F(DriverResidueDeathTest, AFastMutexIsNotLeftOwned) {
  EXPECT_DEATH(
      std::thread([&] {
        FAST_MUTEX* const mutex = &m_fastMutex;
        within(m_leaver, [] {});
        m_leaver->DriverUnload = [](DRIVER_OBJECT* driver) {
          ExAcquireFastMutex(static_cast<FAST_MUTEX*>(driver->DriverSection));
        };
        m_leaver->DriverSection = mutex;
        ntoshost::unloadDriver(m_leaver);
      }).join(),
      "ntos: The driver \\\\Driver\\\\leaver has unloaded while a thread owns the mutex at "
      "0x[0-9a-f]+ that it took in it\\.\n$");
}

TEST_F(DriverResidueDeathTest, AMutexIsNotLeftOwned) {
  m_leaver->DriverSection = &m_mutex;
  m_leaver->DriverUnload = [](DRIVER_OBJECT* driver) {
    KeWaitForSingleObject(driver->DriverSection, Executive, KernelMode, 0, nullptr);
  };
  EXPECT_DEATH(ntoshost::unloadDriver(m_leaver), "has unloaded while a thread owns the mutex");
  m_leaver->DriverUnload = [](DRIVER_OBJECT*) {};
}

TEST_F(DriverResidueDeathTest, NoDriverIsUnloadedWithinItself) {
  auto const entry = [](DRIVER_OBJECT* driver, UNICODE_STRING*) {
    driver->DriverUnload = [](DRIVER_OBJECT*) {};
    return ntoshost::unloadDriver(driver);
  };
  DRIVER_OBJECT* driver = nullptr;
  EXPECT_DEATH(
      ntoshost::loadDriver("hasty", entry, &driver),
      "ntos: The driver \\\\Driver\\\\hasty is unloaded by a thread that runs in it\\.\n$");
  EXPECT_DEATH(within(m_leaver, [&] { within(m_driver, [&] { ntoshost::stopDriver(m_leaver); }); }),
               "\\\\Driver\\\\leaver is unloaded by a thread that runs in it\\.");
}

TEST_F(DriverResidueDeathTest, ARequestIsFreed) {
  IRP* request = nullptr;
  within(m_leaver, [&] { request = IoAllocateIrp(1, 0); });
  EXPECT_DEATH(ntoshost::unloadDriver(m_leaver),
               "ntos: The driver \\\\Driver\\\\leaver has unloaded without freeing the request at "
               "0x[0-9a-f]+ that it made\\.\n$");
  IoFreeIrp(request);
}

TEST_F(DriverResidue, AMutexOfAnotherDriverMayBeOwned) {
  within(m_driver, [&] {
    KeWaitForSingleObject(&m_mutex, Executive, KernelMode, 0, nullptr);
    EXPECT_EQ(unload(), "");
    KeReleaseMutex(&m_mutex, 0);
  });
}

}  // namespace
