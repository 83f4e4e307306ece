// Devices that come and go in several threads.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "testDriver.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 200;

class DeviceThreads : public DriverTest {
 protected:
  template <class Work>
  static void runInThreads(Work work) {
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
  }
};

TEST_F(DeviceThreads, EachHasItsOwnStacks) {
  runInThreads([this] {
    for (int round = 0; round < kRounds; ++round) {
      DEVICE_OBJECT* const bottom = makeDevice(completeWithSuccess, 16);
      DEVICE_OBJECT* const top = makeFilter(bottom);
      EXPECT_EQ(send(bottom), STATUS_SUCCESS);
      takeOff(top, bottom);
      IoDeleteDevice(bottom);
    }
  });
  EXPECT_EQ(ntoshost::countDevices().devices, 0u);
}

TEST_F(DeviceThreads, TheyReferToOneAndOpenIt) {
  DEVICE_OBJECT* const device = makeDevice();
  runInThreads([device] {
    for (int round = 0; round < kRounds; ++round) {
      FILE_OBJECT* file = nullptr;
      ASSERT_EQ(ntoshost::openDevice(device, &file), STATUS_SUCCESS);
      EXPECT_EQ(IoGetAttachedDeviceReference(device), device);
      ObfDereferenceObject(device);
      ntoshost::DeviceControl control = {.code = kCode};
      EXPECT_EQ(ntoshost::controlDevice(file, control), STATUS_SUCCESS);
      ntoshost::closeDevice(file);
    }
  });
  EXPECT_EQ(ntoshost::referencesOn(device), 0u);
  IoDeleteDevice(device);
}

TEST_F(DeviceThreads, RequestsArePendedInOneAndCompletedInAnother) {
  DEVICE_OBJECT* const bottom = makeDevice([](DEVICE_OBJECT*, IRP* request) {
    IoMarkIrpPending(request);
    std::thread([request] { complete(request, STATUS_NO_SUCH_FILE); }).detach();
    return STATUS_PENDING;
  });
  DEVICE_OBJECT* const top = makeFilter(bottom);
  runInThreads([top] {
    for (int round = 0; round < kRounds / 4; ++round) EXPECT_EQ(send(top), STATUS_NO_SUCH_FILE);
  });
  takeOff(top, bottom);
  IoDeleteDevice(bottom);
}

}  // namespace
