// What the platform's wrappers ask of the module.

#include "oxdiagk/package.h"

#include "conformance/harness.h"
#include "vexk/eventLog.h"

namespace {

// What support knows the module by, whatever its version.
constexpr tModuleGUID kIdentifier = {
    0xB4E0D7C2, 0x5A39, 0x4F16, {0x8C, 0x71, 0x2E, 0x93, 0x60, 0xAF, 0x1D, 0x58}};

bool startsWith(char const* text, char const* start) {
  while (*start != '\0' && *text == *start) ++text, ++start;
  return *start == '\0';
}

u64 findNextEvent() {
  tVexEvent event;
  u64 next = 1;
  while (vexReadEvent(next, event)) next = event.number + 1;
  return next;
}

}  // namespace

TEST(Package, TellsWhoTheModuleIs) {
  tModulePackage const& package = *pkgSetLegacyWrapperLoadState(0);
  EXPECT_EQ(1u, package.format);
  EXPECT_EQ(u64{0}, package.reserved);
  EXPECT_EQ(6u, package.identity->format);
  EXPECT_EQ(0, __builtin_memcmp(&package.identity->guid, &kIdentifier, sizeof(kIdentifier)));
  EXPECT_STREQ("oxdiagk", package.identity->name);
  EXPECT_STREQ("oxdiagk.dll", package.identity->fileName);
  EXPECT_EQ(520u, u32{package.registryPath.MaximumLength});
  EXPECT_TRUE(package.registryPath.Buffer == package.registryPathText);
}

TEST(Package, KeepsTheStateOfTheLegacyWrapper) {
  tModulePackage* const package = pkgSetLegacyWrapperLoadState(0xFFFFFFFF);
  EXPECT_EQ(0xFFFFFFFFu, package->legacyWrapperState);
  package->legacyWrapperWords[0] = 1;
  package->legacyWrapperWords[1] = 2;
  EXPECT_TRUE(pkgSetLegacyWrapperLoadState(3) == package);
  EXPECT_EQ(3u, package->legacyWrapperState);
  EXPECT_EQ(1u, package->legacyWrapperWords[0]);
  EXPECT_EQ(2u, package->legacyWrapperWords[1]);
  EXPECT_TRUE(pkgSetLegacyWrapperLoadState(0) == package);
  EXPECT_EQ(0u, package->legacyWrapperState);
  EXPECT_EQ(0u, package->legacyWrapperWords[0]);
  EXPECT_EQ(0u, package->legacyWrapperWords[1]);
}

TEST(Package, KeepsTheStateOfTheWDMWrapperAndGivesTheIdentifier) {
  tModulePackage const& package = *pkgSetLegacyWrapperLoadState(0);
  u32 const states[] = {1, 0xFFFFFFFF, 0};
  for (u32 const state : states) {
    EXPECT_TRUE(pkgSetWDMWrapperLoadStateAndGetGUID(state) == &package.identity->guid);
    EXPECT_EQ(state, package.wdmWrapperState);
  }
}

TEST(Package, OtherReasonsAreToldAndDoNothing) {
  u64 const next = findNextEvent();
  for (u32 reason = 2; reason <= 5; ++reason) EXPECT_EQ(0, pkgWDMWrapperCallSSMain(reason));
  tVexEvent event;
  EXPECT_TRUE(vexReadEvent(next, event));
  EXPECT_TRUE(startsWith(event.text, "oxdiagk.dll open: "));
  EXPECT_TRUE(vexReadEvent(next + 3, event));
  EXPECT_TRUE(startsWith(event.text, "oxdiagk.dll reason 5: "));
}
