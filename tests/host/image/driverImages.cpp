// Drivers with images: mapped with the driver, unmapped with it, and nobody may be within by then.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <csignal>
#include <thread>

#include "ntos/irql.h"
#include "ntos/mutex.h"
#include "ntos/pool.h"
#include "ntos/removeLock.h"
#include "ntos/wait.h"
#include "ntoshost/executive.h"
#include "visitedDriver.h"

namespace {

bool isMapped() {
  void* const known = dlopen(OXDIAG_VISITED_IMAGE, RTLD_NOW | RTLD_NOLOAD);
  if (known != nullptr) dlclose(known);
  return known != nullptr;
}

class DriverImages : public testing::Test {
 protected:
  DriverImages() {
    EXPECT_EQ(ntoshost::loadDriverImage("visited", OXDIAG_VISITED_IMAGE, &driver), STATUS_SUCCESS);
  }
  ~DriverImages() override {
    if (isLoaded) unload();
    EXPECT_FALSE(isMapped());
    ntoshost::requireNoDevices("the test");
    ntoshost::requireNoOutstanding("the test");
  }

  template <class Symbol>
  Symbol* find(char const* name) {
    return reinterpret_cast<Symbol*>(dlsym(driver->DriverSection, name));
  }

  void unload() {
    EXPECT_EQ(ntoshost::stopDriver(driver), STATUS_SUCCESS);
    isLoaded = false;
  }

  static void unloadWithin(void* test) { static_cast<DriverImages*>(test)->unload(); }

  DRIVER_OBJECT* driver = nullptr;
  bool isLoaded = true;
};

using DriverImagesDeathTest = DriverImages;

// By the signal, or as the address sanitizer ends a program for it.
bool endsAsWithoutImages(int status) {
  bool const isKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV;
  return isKilled || (dlsym(RTLD_DEFAULT, "__asan_init") != nullptr && WIFEXITED(status));
}
constexpr char kNoSentenceOfOurs[] = "^$|AddressSanitizer: SEGV";

}  // namespace

TEST_F(DriverImages, AreMappedWhereTheDriverSays) {
  auto const start = reinterpret_cast<uintptr_t>(driver->DriverStart);
  auto const entry = reinterpret_cast<uintptr_t>(driver->DriverInit);
  auto const bytes = reinterpret_cast<uintptr_t>(find<char>("visitedBytes"));
  EXPECT_LT(entry - start, driver->DriverSize);
  EXPECT_LT(bytes - start, driver->DriverSize);
  EXPECT_EQ(start % 4096, 0u);
  EXPECT_EQ(driver->DriverSize % 4096, 0u);
}

TEST_F(DriverImages, AreUnmappedAndTheirPlaceStaysEmpty) {
  void* const start = driver->DriverStart;
  unload();
  EXPECT_FALSE(isMapped());
  void* const other = mmap(start, 4096, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  EXPECT_NE(other, start);
  munmap(other, 4096);
}

TEST_F(DriverImages, OneFileIsOneDriver) {
  DRIVER_OBJECT* second = driver;
  EXPECT_EQ(ntoshost::loadDriverImage("second", OXDIAG_VISITED_IMAGE, &second),
            STATUS_IMAGE_ALREADY_LOADED);
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(ntoshost::countDevices().drivers, 1u);
}

TEST_F(DriverImages, WhatIsNoImageIsRefused) {
  DRIVER_OBJECT* none = driver;
  for (char const* file : {"/nowhere.so", OXDIAG_SOURCE_DIR "/README.md", ""}) {
    EXPECT_NE(ntoshost::loadDriverImage("none", file, &none), STATUS_SUCCESS);
    EXPECT_EQ(none, nullptr);
  }
  EXPECT_EQ(ntoshost::countDevices().drivers, 1u);
}

TEST_F(DriverImages, AnImageWithoutAnEntryIsRefusedAndUnmapped) {
  DRIVER_OBJECT* none = driver;
  EXPECT_EQ(ntoshost::loadDriverImage("none", OXDIAG_IMAGE, &none), STATUS_OBJECT_NAME_NOT_FOUND);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(dlopen(OXDIAG_IMAGE, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST_F(DriverImagesDeathTest, NobodyReturnsIntoOne) {
  EXPECT_DEATH(find<decltype(workWithin)>("workWithin")(unloadWithin, this),
               "ntos: A thread runs in the image of the driver \\\\Driver\\\\visited at offset "
               "0x[0-9a-f]+, which was unloaded\\.\n$");
}

TEST_F(DriverImagesDeathTest, NobodyCallsIntoOne) {
  auto* const work = find<decltype(workWithin)>("workWithin");
  unload();
  // The sanitizer looks at a function before it is called.
  EXPECT_DEATH(work([](void*) {}, nullptr), "A thread (runs in|touches) the image of the driver");
}

TEST_F(DriverImagesDeathTest, NobodyTouchesOne) {
  char volatile* const bytes = find<char>("visitedBytes");
  EXPECT_EQ(bytes[0], 'h');
  unload();
  EXPECT_DEATH(bytes[0] = 1,
               "ntos: A thread touches the image of the driver \\\\Driver\\\\visited at offset 0x");
}

TEST_F(DriverImagesDeathTest, OneThatSomebodyElseHoldsIsNotUnloaded) {
  void* const held = dlopen(OXDIAG_VISITED_IMAGE, RTLD_NOW | RTLD_NOLOAD);
  EXPECT_DEATH(ntoshost::stopDriver(driver),
               "ntos: The image of the driver \\\\Driver\\\\visited at 0x[0-9a-f]+ stays mapped "
               "after its unloading\\.\n$");
  dlclose(held);
}

TEST_F(DriverImagesDeathTest, OtherFaultsAreWhatTheyWere) {
  unload();
  auto* const place = static_cast<char volatile*>(
      mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  EXPECT_EXIT(*place = 1, endsAsWithoutImages, kNoSentenceOfOurs);
  munmap(const_cast<char*>(place), 4096);
}

TEST_F(DriverImagesDeathTest, ASentSignalIsWhatItWas) {
  unload();
  EXPECT_EXIT(raise(SIGSEGV), endsAsWithoutImages, kNoSentenceOfOurs);
}

// A thread that is made by a raised one has no rights on paged memory until its first fault there.
TEST_F(DriverImagesDeathTest, AreWatchedAfterAFaultInPagedMemoryThatIsServed) {
  constexpr u32 kTag = ntosPoolTag("page");
  char volatile* const bytes = find<char>("visitedBytes");
  auto* const block = static_cast<u8*>(ExAllocatePoolWithTag(PagedPool, 40, kTag));
  unload();
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  std::thread([block] { *block = 1; }).join();
  KeLowerIrql(previous);
  ExFreePoolWithTag(block, kTag);
  EXPECT_DEATH(bytes[0] = 1, "ntos: A thread touches the image of the driver");
}

TEST_F(DriverImagesDeathTest, OneWithAnOwnedMutexIsNotUnloaded) {
  auto* const mutex = reinterpret_cast<KMUTEX*>(find<char>("visitedBytes"));
  KeInitializeMutex(mutex, 0);
  KeWaitForSingleObject(mutex, Executive, KernelMode, 0, nullptr);
  EXPECT_DEATH(ntoshost::stopDriver(driver),
               "ntos: The image of the driver \\\\Driver\\\\visited goes while a thread owns the "
               "mutex at 0x[0-9a-f]+ in it\\.\n$");
  KeReleaseMutex(mutex, 0);
}

TEST_F(DriverImagesDeathTest, OneWithARemoveLockThatIsHeldIsNotUnloaded) {
  auto* const lock = reinterpret_cast<IO_REMOVE_LOCK*>(find<char>("visitedBytes"));
  IoInitializeRemoveLock(lock, ntosPoolTag("lock"));
  EXPECT_EQ(IoAcquireRemoveLock(lock, this), STATUS_SUCCESS);
  EXPECT_DEATH(ntoshost::stopDriver(driver),
               "ntos: The image of the driver \\\\Driver\\\\visited goes while the remove lock at "
               "0x[0-9a-f]+ in it is held\\.\n$");
  IoReleaseRemoveLock(lock, this);
}
