// The tests of the driver: what a program and the kernel may do to it, on Linux.

#include <gtest/gtest.h>

#include <string>

#include "driver.h"
#include "letterbox.h"
#include "ntoshost/executive.h"

namespace {

// The driver with one started device. At the end nothing of it may be left.
class Letterbox : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ntoshost::loadDriver("letterbox", DriverEntry, &driver), STATUS_SUCCESS);
    ASSERT_EQ(ntoshost::addRootDevice(driver, "LETTERBOX", &box), STATUS_SUCCESS);
    ASSERT_EQ(ntoshost::startDevice(box), STATUS_SUCCESS);
    ASSERT_EQ(ntoshost::openDevice(L"\\??\\Letterbox", &file), STATUS_SUCCESS);
  }

  void TearDown() override {
    if (file != nullptr) ntoshost::closeDevice(file);
    if (box != nullptr) {
      EXPECT_EQ(ntoshost::removeRootDevice(box), STATUS_SUCCESS);
    }
    EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_SUCCESS);
    ntoshost::requireNoDevices("the test");
    ntoshost::requireNoOutstanding("the test");
  }

  NTSTATUS post(std::string text) {
    ntoshost::DeviceControl control = {.code = IOCTL_LETTERBOX_POST,
                                       .input = text.data(),
                                       .inputLength = static_cast<u32>(text.size())};
    return ntoshost::controlDevice(file, control);
  }

  NTSTATUS fetch(std::string& text, u32 room = LETTERBOX_MOST_BYTES) {
    text.assign(room, '?');
    ntoshost::DeviceControl control = {
        .code = IOCTL_LETTERBOX_FETCH, .output = text.data(), .outputLength = room};
    NTSTATUS const status = ntoshost::controlDevice(file, control);
    text.resize(control.information);
    return status;
  }

  DRIVER_OBJECT* driver = nullptr;
  DEVICE_OBJECT* box = nullptr;  // the physical device
  FILE_OBJECT* file = nullptr;
};

TEST_F(Letterbox, GivesTheOldestLetterFirst) {
  EXPECT_EQ(post("one"), STATUS_SUCCESS);
  EXPECT_EQ(post("two"), STATUS_SUCCESS);
  std::string text;
  EXPECT_EQ(fetch(text), STATUS_SUCCESS);
  EXPECT_EQ(text, "one");
  EXPECT_EQ(fetch(text), STATUS_SUCCESS);
  EXPECT_EQ(text, "two");
  EXPECT_EQ(fetch(text), STATUS_NO_MORE_ENTRIES);
}

TEST_F(Letterbox, RefusesWhatIsNoLetter) {
  EXPECT_EQ(post(""), STATUS_INVALID_PARAMETER);
  EXPECT_EQ(post(std::string(LETTERBOX_MOST_BYTES, 'x')), STATUS_SUCCESS);
  EXPECT_EQ(post(std::string(LETTERBOX_MOST_BYTES + 1, 'x')), STATUS_INVALID_PARAMETER);
  ntoshost::DeviceControl unknown = {.code = IOCTL_LETTERBOX_FETCH + 4};
  EXPECT_EQ(ntoshost::controlDevice(file, unknown), STATUS_INVALID_DEVICE_REQUEST);
}

TEST_F(Letterbox, IsFullAtSixteen) {
  for (int i = 0; i < LETTERBOX_MOST_LETTERS; ++i) EXPECT_EQ(post("letter"), STATUS_SUCCESS);
  EXPECT_EQ(post("letter"), STATUS_DEVICE_BUSY);
}

TEST_F(Letterbox, KeepsALetterThatDoesNotFit) {
  EXPECT_EQ(post("letter"), STATUS_SUCCESS);
  std::string text;
  EXPECT_EQ(fetch(text, 5), STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(fetch(text, 6), STATUS_SUCCESS);
  EXPECT_EQ(text, "letter");
}

TEST_F(Letterbox, LosesNoLetterWhenMemoryIsShort) {
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultAll, [&](u64) {
    NTSTATUS const posted = post("letter");
    ntoshost::clearFaults();
    std::string text;
    if (NT_SUCCESS(posted)) {
      EXPECT_EQ(fetch(text), STATUS_SUCCESS);
      EXPECT_EQ(text, "letter");
    } else {
      EXPECT_EQ(posted, STATUS_INSUFFICIENT_RESOURCES);
      EXPECT_EQ(fetch(text), STATUS_NO_MORE_ENTRIES);
    }
  });
  EXPECT_GE(failures, 2u) << "the request's buffer and the letter";
}

TEST_F(Letterbox, WaitsForNoProgramThatIsSuspended) {
  auto const exchange = [this] {
    std::string text;
    EXPECT_EQ(post("letter"), STATUS_SUCCESS);
    EXPECT_EQ(fetch(text), STATUS_SUCCESS);
  };
  u64 const calls = ntoshost::suspendAtEachCall(exchange, exchange);
  EXPECT_GE(calls, 8u) << "two remove locks, two fast mutexes";
}

TEST_F(Letterbox, AGoneDeviceIsRefusedUntilTheLastHandleIsClosed) {
  EXPECT_EQ(post("never fetched"), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::surpriseRemoveDevice(box), STATUS_SUCCESS);
  box = nullptr;
  EXPECT_EQ(post("too late"), STATUS_DEVICE_NOT_READY);
  EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_DEVICE_BUSY);
  ntoshost::closeDevice(file);  // and now the remove request arrives, which burns the letter
  file = nullptr;
  EXPECT_EQ(ntoshost::residueOf(driver).blocks, 0u);
}

TEST_F(Letterbox, AStoppedDeviceKeepsItsLetters) {
  EXPECT_EQ(post("letter"), STATUS_SUCCESS);
  EXPECT_EQ(ntoshost::stopDevice(box), STATUS_SUCCESS);
  std::string text;
  EXPECT_EQ(fetch(text), STATUS_DEVICE_NOT_READY);
  EXPECT_EQ(ntoshost::startDevice(box), STATUS_SUCCESS);
  EXPECT_EQ(fetch(text), STATUS_SUCCESS);
  EXPECT_EQ(text, "letter");
}

TEST_F(Letterbox, PassesPowerRequestsOnAtDispatchLevel) {
  ntoshost::Request request = {.major = IRP_MJ_POWER, .minor = IRP_MN_QUERY_POWER};
  request.parameters.Power.Type = DevicePowerState;
  request.parameters.Power.State.DeviceState = PowerDeviceD3;
  KIRQL before = PASSIVE_LEVEL;
  KeRaiseIrql(DISPATCH_LEVEL, &before);
  NTSTATUS const status = ntoshost::sendRequest(box, request);
  KeLowerIrql(before);
  EXPECT_EQ(status, STATUS_SUCCESS);
}

TEST_F(Letterbox, UsesLittleOfTheKernelStack) {
  if (!ntoshost::hasKernelStacks()) GTEST_SKIP() << "the sanitizers' frames are larger";
  ntoshost::forgetStackDepth();
  EXPECT_EQ(post("letter"), STATUS_SUCCESS);
  EXPECT_LT(ntoshost::deepestKernelStack(), 4096u);
}

// The device on top of the stack is the driver's own.
ULONG countOf(DEVICE_OBJECT* box) {
  DEVICE_OBJECT* const top = IoGetAttachedDeviceReference(box);
  ULONG const count = LetterboxCount(top);
  ObfDereferenceObject(top);
  return count;
}

TEST_F(Letterbox, CountsAtApcLevel) {
  EXPECT_EQ(post("letter"), STATUS_SUCCESS);
  KIRQL before = PASSIVE_LEVEL;
  KeRaiseIrql(APC_LEVEL, &before);
  EXPECT_EQ(countOf(box), 1u);
  KeLowerIrql(before);
}

using LetterboxDeathTest = Letterbox;

TEST_F(LetterboxDeathTest, IsNotCountedAtDispatchLevel) {
  KIRQL before = PASSIVE_LEVEL;
  EXPECT_DEATH(
      {
        KeRaiseIrql(DISPATCH_LEVEL, &before);
        countOf(box);
      },
      "ExAcquireFastMutex was called at IRQL 2 .*; it may be called up to IRQL 1");
}

// From the first call of the driver to its last, with the 1st, 2nd, 3rd ... call of the kernel
// failing.
TEST(LetterboxStart, LeavesNothingWhenACallFails) {
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultAll, [](u64) {
    DRIVER_OBJECT* driver = nullptr;
    DEVICE_OBJECT* box = nullptr;
    FILE_OBJECT* file = nullptr;
    if (!NT_SUCCESS(ntoshost::loadDriver("letterbox", DriverEntry, &driver))) return;
    if (NT_SUCCESS(ntoshost::addRootDevice(driver, "LETTERBOX", &box))) {
      ntoshost::startDevice(box);
      if (NT_SUCCESS(ntoshost::openDevice(L"\\??\\Letterbox", &file))) ntoshost::closeDevice(file);
      ntoshost::clearFaults();
      EXPECT_EQ(ntoshost::removeRootDevice(box), STATUS_SUCCESS);
    }
    EXPECT_EQ(ntoshost::unloadDriver(driver), STATUS_SUCCESS);
    ntoshost::requireNoDevices("the test");
    ntoshost::requireNoOutstanding("the test");
  });
  EXPECT_GE(failures, 4u) << "driver, physical device, device, link";
}

}  // namespace
