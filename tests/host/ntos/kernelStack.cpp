// The stack that drivers run on.

#include <gtest/gtest.h>
#include <pthread.h>

#include <thread>

#include "ntos/stack.h"
#include "ntoshost/stack.h"
#include "testDriver.h"

namespace {

class KernelStack : public DriverTest {
 protected:
  KernelStack() {
    if (ntoshost::hasKernelStacks()) ntoshost::forgetStackDepth();
  }

  void SetUp() override {
    if (!ntoshost::hasKernelStacks()) GTEST_SKIP() << "a sanitizer has the stacks";
  }

  // Sends a request to a device whose dispatch does this.
  template <class Work>
  void inDispatch(Work work) {
    DEVICE_OBJECT* const device = makeDevice([work](DEVICE_OBJECT*, IRP* request) {
      work();
      return complete(request, STATUS_SUCCESS);
    });
    EXPECT_EQ(send(device), STATUS_SUCCESS);
    IoDeleteDevice(device);
  }
};

using KernelStackDeathTest = KernelStack;

u64 here() {
  return reinterpret_cast<u64>(__builtin_frame_address(0));
}

// Has at least this many bytes of stack in use, and returns something that hangs on them.
__attribute__((noinline)) u64 use(u64 bytes) {
  u8 volatile used[512];
  for (u8 volatile& byte : used) byte = static_cast<u8>(bytes);
  return bytes <= sizeof(used) ? used[0] : use(bytes - sizeof(used)) + used[1];
}

u64 distance(u64 left, u64 right) {
  return left < right ? right - left : left - right;
}

TEST_F(KernelStack, ARequestIsServedOnAStackOfItsOwn) {
  u64 within = 0;
  inDispatch([&] { within = here(); });
  EXPECT_GT(distance(within, here()), 64u * 1024);
}

TEST_F(KernelStack, RequestsOfAThreadUseTheSameOne) {
  u64 first = 0;
  u64 second = 1;
  inDispatch([&] { first = here(); });
  inDispatch([&] { second = here(); });
  EXPECT_EQ(first, second);
}

TEST_F(KernelStack, ARequestWithinARequestGoesOnThere) {
  DEVICE_OBJECT* const lower = makeDevice();
  u64 outside = 0;
  u64 inside = 0;
  setDispatch(lower, [&](DEVICE_OBJECT*, IRP* request) {
    inside = here();
    return complete(request, STATUS_SUCCESS);
  });
  DEVICE_OBJECT* const upper = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    outside = here();
    IoSkipCurrentIrpStackLocation(request);
    return IoCallDriver(lower, request);
  });
  EXPECT_EQ(IoAttachDeviceToDeviceStack(upper, lower), lower);
  EXPECT_EQ(send(upper), STATUS_SUCCESS);
  EXPECT_LT(inside, outside);
  EXPECT_LT(outside - inside, ntoshost::kKernelStackSize);
  takeOff(upper, lower);
  IoDeleteDevice(lower);
}

TEST_F(KernelStack, ThreadsHaveTheirOwn) {
  u64 first = 0;
  u64 second = 0;
  inDispatch([&] {
    first = here();
    std::thread([&] { inDispatch([&] { second = here(); }); }).join();
  });
  EXPECT_GE(distance(first, second), ntoshost::kKernelStackSize);
}

TEST_F(KernelStack, ThreadsComeAndGo) {
  for (int i = 0; i < 100; ++i) {
    std::thread([&] { inDispatch([] { use(4096); }); }).join();
  }
  EXPECT_GT(ntoshost::deepestKernelStack(), 4096u);
}

TEST_F(KernelStack, TheDeepestIsKnown) {
  inDispatch([] { use(4 * 1024); });
  u64 const shallow = ntoshost::deepestKernelStack();
  EXPECT_GT(shallow, 4u * 1024);
  EXPECT_LT(shallow, 12u * 1024);
  inDispatch([] { use(12 * 1024); });
  u64 const deep = ntoshost::deepestKernelStack();
  EXPECT_GT(deep, 12u * 1024);
  EXPECT_LT(deep, 20u * 1024);
  inDispatch([] {});
  EXPECT_EQ(ntoshost::deepestKernelStack(), deep);
}

TEST_F(KernelStack, TheDepthIsForgotten) {
  inDispatch([] { use(12 * 1024); });
  ntoshost::forgetStackDepth();
  EXPECT_EQ(ntoshost::deepestKernelStack(), 0u);
  inDispatch([] {});
  EXPECT_GT(ntoshost::deepestKernelStack(), 0u);
  EXPECT_LT(ntoshost::deepestKernelStack(), 8u * 1024);
}

TEST_F(KernelStack, ATraceEndsWhereTheStackDoes) {
  void* addresses[64] = {};
  u16 found = 0;
  inDispatch([&] { found = RtlCaptureStackBackTrace(0, 64, addresses, nullptr); });
  EXPECT_GT(found, 1);
  EXPECT_LT(found, 64);
}

TEST_F(KernelStackDeathTest, AnOverflowIsASentence) {
  EXPECT_DEATH(inDispatch([] { use(25 * 1024); }),
               "ntos: The kernel stack of 24576 bytes has overflown within the driver "
               "\\\\Driver\\\\tester\\.\n$");
}

TEST_F(KernelStackDeathTest, AnOverflowInAnotherThreadIsToo) {
  EXPECT_DEATH(std::thread([&] { inDispatch([] { use(40 * 1024); }); }).join(),
               "The kernel stack of 24576 bytes has overflown");
}

TEST_F(KernelStackDeathTest, TheEntryOfADriverRunsThere) {
  auto const entry = [](DRIVER_OBJECT*, UNICODE_STRING*) {
    use(25 * 1024);
    return STATUS_SUCCESS;
  };
  DRIVER_OBJECT* driver = nullptr;
  EXPECT_DEATH(ntoshost::loadDriver("deep", entry, &driver),
               "has overflown within the driver \\\\Driver\\\\deep\\.");
}

TEST_F(KernelStackDeathTest, AThreadEndsOutsideDrivers) {
  EXPECT_DEATH(std::thread([&] { inDispatch([] { pthread_exit(nullptr); }); }).join(),
               "ntos: A thread ended within the driver \\\\Driver\\\\tester\\.\n$");
}

TEST_F(KernelStackDeathTest, TheDepthIsForgottenWhileNoDriverRuns) {
  EXPECT_DEATH(inDispatch([] { ntoshost::forgetStackDepth(); }),
               "ntos: forgetStackDepth was called while a driver runs\\.");
}

TEST_F(KernelStackDeathTest, AnyOtherFaultIsWhatItWas) {
  EXPECT_EXIT(inDispatch([] { *reinterpret_cast<u8 volatile*>(u64{8}) = 1; }),
              testing::KilledBySignal(SIGSEGV), "^$");
}

TEST_F(KernelStackDeathTest, ASentSignalIsWhatItWas) {
  EXPECT_EXIT(inDispatch([] { raise(SIGSEGV); }), testing::KilledBySignal(SIGSEGV), "^$");
}

}  // namespace
