// The module's exports for the platform's wrappers, called as by somebody who knows no header, and
// the record behind them as bytes.

#include "conformance/harness.h"

extern "C" {
__declspec(dllimport) u8* pkgSetLegacyWrapperLoadState(u32 state);
__declspec(dllimport) u8 const* pkgSetWDMWrapperLoadStateAndGetGUID(u32 state);
__declspec(dllimport) i32 pkgWDMWrapperCallSSMain(u32 reason);
}

namespace {

template <class T>
T at(u8 const* record, u32 offset) {
  T value;
  __builtin_memcpy(&value, record + offset, sizeof(value));
  return value;
}

constexpr wchar_t kServiceKey[] =
    L"\\Registry\\Machine\\System\\CurrentControlSet\\Services\\oxdiagk";

}  // namespace

TEST(PackageCalls, TheRecordHasTheLayoutThatThePlatformReads) {
  u8 const* const package = pkgSetLegacyWrapperLoadState(0);
  EXPECT_EQ(at<u32>(package, 0), 1u);
  u8 const* const identity = at<u8 const*>(package, 8);
  EXPECT_EQ(at<u64>(package, 16), u64{0});
  EXPECT_EQ(at<u32>(identity, 0), 6u);
  EXPECT_STREQ(at<char const*>(identity, 8), "oxdiagk");
  EXPECT_STREQ(at<char const*>(identity, 32), "oxdiagk.dll");
  EXPECT_TRUE(pkgSetWDMWrapperLoadStateAndGetGUID(0) == identity + 16);
}

TEST(PackageCalls, TheRegistryPathIsThatOfTheLoad) {
  u8 const* const package = pkgSetLegacyWrapperLoadState(0);
  EXPECT_EQ(u32{at<u16>(package, 24)}, u32{sizeof(kServiceKey) - sizeof(wchar_t)});
  EXPECT_EQ(u32{at<u16>(package, 26)}, 520u);
  EXPECT_TRUE(at<u8 const*>(package, 32) == package + 40);
  EXPECT_EQ(__builtin_memcmp(package + 40, kServiceKey, sizeof(kServiceKey)), 0);
}

TEST(PackageCalls, TheStatesAreKeptAtTheirPlaces) {
  u8 const* const package = pkgSetLegacyWrapperLoadState(0x12345678);
  pkgSetWDMWrapperLoadStateAndGetGUID(0x9ABCDEF0);
  EXPECT_EQ(at<u32>(package, 560), 0x9ABCDEF0u);
  EXPECT_EQ(at<u32>(package, 564), 0x12345678u);
  pkgSetWDMWrapperLoadStateAndGetGUID(0);
  pkgSetLegacyWrapperLoadState(0);
  EXPECT_EQ(at<u32>(package, 560), 0u);
  EXPECT_EQ(at<u32>(package, 564), 0u);
}

TEST(PackageCalls, TheEntryIsCalledWithItsReason) {
  EXPECT_EQ(pkgWDMWrapperCallSSMain(2), 0);
  EXPECT_EQ(pkgWDMWrapperCallSSMain(0xFFFFFFFF), 0);
}
