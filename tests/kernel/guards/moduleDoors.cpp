// The doors by which the kernel enters the modules of the library, called once more: that each
// leads to what stands behind it, and that a module without a stack cookie gets one there.

#include "boot/tModuleImage.h"
#include "conformance/harness.h"
#include "guards/moduleGuards.h"
#include "guards/tWatchedImport.h"
#include "image/stackCookie.h"
#include "ntos/status.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

using tEntry = NTSTATUS();
using tDllInitialize = NTSTATUS(UNICODE_STRING* registryPath);

constexpr char kIsInitialized[] = "?pkgIsVexkInitialized@@YAKXZ";  // as the linker names it

constexpr u32 kModules = 3;
constexpr u32 kCounting = 2;  // the first of them, which count how often they are initialised

tModuleImage imageOf(u32 index) {
  void const* const inside[kModules] = {reinterpret_cast<void const*>(&vexkInitialize),
                                        reinterpret_cast<void const*>(&qelmkInitialize),
                                        reinterpret_cast<void const*>(&oxdiagkInitialize)};
  return tModuleImage(inside[index]);
}

NTSTATUS initialise(tModuleImage const& image) {
  return reinterpret_cast<tDllInitialize*>(image.findExport("DllInitialize"))(nullptr);
}

u32 sayNo() {
  return 0;
}

NTSTATUS unload(tModuleImage const& image) {
  return reinterpret_cast<tEntry*>(image.findExport("DllUnload"))();
}

}  // namespace

TEST(ModuleDoors, ALibraryIsNeverStartedAsADriver) {
  for (u32 index = 0; index < kModules; ++index) {
    auto* const entry = reinterpret_cast<tEntry*>(imageOf(index).findEntry());
    EXPECT_EQ(entry(), STATUS_DRIVER_UNABLE_TO_LOAD);
  }
}

TEST(ModuleDoors, ALibraryMayBeInitialisedOnceMore) {
  for (u32 index = 0; index < kCounting; ++index) {
    EXPECT_EQ(initialise(imageOf(index)), STATUS_SUCCESS);
    EXPECT_EQ(unload(imageOf(index)), STATUS_SUCCESS);
  }
}

TEST(ModuleDoors, ALibraryWithoutACookieGetsOne) {
  for (u32 index = 0; index < kCounting; ++index) {
    tModuleImage const image = imageOf(index);
    u64& cookie = *guardsAt(image.base())->securityCookie;
    cookie = kUnseededCookie;
    EXPECT_EQ(initialise(image), STATUS_SUCCESS);
    EXPECT_TRUE(cookie != 0 && cookie != kUnseededCookie);
    EXPECT_EQ(unload(image), STATUS_SUCCESS);
  }
}

// Whoever uses the platform layer, and finds it without its initialisation, hands its refusal on.
TEST(ModuleDoors, ALibraryWithoutThePlatformIsNotLoaded) {
  tWatchedImport const watch(kIsInitialized, reinterpret_cast<void*>(&sayNo));
  ASSERT_EQ(watch.countModules(), u32{2});
  for (u32 index = 1; index < kModules; ++index) {
    EXPECT_EQ(initialise(imageOf(index)), STATUS_DRIVER_UNABLE_TO_LOAD);
  }
}
