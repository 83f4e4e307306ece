#include "conformance/harness.h"
#include "vexk/callStack.h"

namespace {

constexpr u32 kCount = 10;
constexpr u64 kUntouched = 0xAAAAAAAAAAAAAAAA;

struct tCapture {
  u32 found = 0;
  u64 addresses[kCount] = {};
  u64 returnAddress = 0;  // of the function that captured
};

// The empty asm after a call keeps it from becoming a jump, which would leave no frame.
__attribute__((noinline)) void capture(u32 skip, tCapture& result) {
  result.returnAddress = reinterpret_cast<u64>(__builtin_return_address(0));
  result.found = _vexGetCallStack(kCount, skip, result.addresses);
  __asm__ volatile("");
}

__attribute__((noinline)) void captureOneDeeper(u32 skip, tCapture& result, u64& returnAddress) {
  returnAddress = reinterpret_cast<u64>(__builtin_return_address(0));
  capture(skip, result);
  __asm__ volatile("");
}

bool lies(u64 address, void (*function)(u32, tCapture&)) {
  constexpr u64 kMoreThanTheFunction = 4096;
  u64 const begin = reinterpret_cast<u64>(function);
  return address > begin && address < begin + kMoreThanTheFunction;
}

}  // namespace

TEST(VexkCallStack, TheFirstAddressIsInTheCaller) {
  tCapture result;
  capture(0, result);
  ASSERT_LE(u32{3}, result.found);
  EXPECT_TRUE(lies(result.addresses[0], &capture));
}

TEST(VexkCallStack, TheNextAddressesAreWhereTheCallersReturnTo) {
  tCapture result;
  u64 outerReturn = 0;
  captureOneDeeper(0, result, outerReturn);
  ASSERT_LE(u32{3}, result.found);
  EXPECT_EQ(result.returnAddress, result.addresses[1]);
  EXPECT_EQ(outerReturn, result.addresses[2]);
}

TEST(VexkCallStack, SkippingLeavesOutTheInnermost) {
  tCapture result;
  u64 outerReturn = 0;
  captureOneDeeper(1, result, outerReturn);
  EXPECT_EQ(result.returnAddress, result.addresses[0]);
  captureOneDeeper(2, result, outerReturn);
  EXPECT_EQ(outerReturn, result.addresses[0]);
}

TEST(VexkCallStack, EntriesBehindTheLastFrameAreZero) {
  tCapture result;
  for (u64& address : result.addresses) address = kUntouched;
  capture(kCallStackMaximum - 1, result);
  for (u32 i = 0; i < kCount; ++i) {
    EXPECT_TRUE((result.addresses[i] != 0) == (i < result.found));
  }
}

TEST(VexkCallStack, SkippingTheWholeStackFindsNothing) {
  u32 const skips[] = {kCallStackMaximum, kCallStackMaximum + 1, 0x7FFFFFFF, 0xFFFFFFFE,
                       0xFFFFFFFF};
  for (u32 skip : skips) {
    tCapture result;
    for (u64& address : result.addresses) address = kUntouched;
    capture(skip, result);
    EXPECT_EQ(u32{0}, result.found);
    bool allZero = true;
    for (u64 address : result.addresses) allZero = allZero && address == 0;
    EXPECT_TRUE(allZero);
  }
}

TEST(VexkCallStack, WritesNoMoreEntriesThanAskedFor) {
  u64 addresses[2] = {kUntouched, kUntouched};
  EXPECT_EQ(u32{1}, _vexGetCallStack(1, 0, addresses));
  EXPECT_NE(kUntouched, addresses[0]);
  EXPECT_EQ(kUntouched, addresses[1]);
}

TEST(VexkCallStack, ACountOfZeroWritesNothing) {
  u64 addresses[1] = {kUntouched};
  EXPECT_EQ(u32{0}, _vexGetCallStack(0, 0, addresses));
  EXPECT_EQ(kUntouched, addresses[0]);
}

TEST(VexkCallStack, NullFindsNothing) {
  EXPECT_EQ(u32{0}, _vexGetCallStack(10, 0, nullptr));
}
