#include "conformance/harness.h"
#include "vexk/userMemory.h"

namespace {

// Where these tests run, the memory of the program itself is user memory.
constexpr char kText[] = "sixteen and more";

u64 addressOf(void const* object) {
  return reinterpret_cast<u64>(object);
}

}  // namespace

TEST(VexkUserMemory, CopiesFromUserMemory) {
  char target[sizeof kText] = {};
  EXPECT_EQ(sizeof kText, vexCopyFromUser(target, addressOf(kText), sizeof kText));
  EXPECT_STREQ(kText, target);
}

TEST(VexkUserMemory, CopiesToUserMemory) {
  char target[sizeof kText] = {};
  EXPECT_EQ(sizeof kText, vexCopyToUser(addressOf(target), kText, sizeof kText));
  EXPECT_STREQ(kText, target);
}

TEST(VexkUserMemory, CopiesAcrossManyPages) {
  constexpr size_t kSize = 20000;
  static u8 source[kSize];
  static u8 target[kSize];
  for (size_t i = 0; i < kSize; ++i) source[i] = static_cast<u8>(i * 31 + i / 256);
  EXPECT_EQ(kSize, vexCopyFromUser(target, addressOf(source), kSize));
  EXPECT_EQ(0, __builtin_memcmp(source, target, kSize));
  for (size_t i = 0; i < kSize; ++i) source[i] = static_cast<u8>(~source[i]);
  EXPECT_EQ(kSize, vexCopyToUser(addressOf(target), source, kSize));
  EXPECT_EQ(0, __builtin_memcmp(source, target, kSize));
}

TEST(VexkUserMemory, CopiesOnlyWhatWasAskedFor) {
  char target[4] = {'?', '?', '?', '?'};
  EXPECT_EQ(size_t{2}, vexCopyFromUser(target + 1, addressOf(kText), 2));
  EXPECT_EQ('?', target[0]);
  EXPECT_EQ('s', target[1]);
  EXPECT_EQ('i', target[2]);
  EXPECT_EQ('?', target[3]);
}

TEST(VexkUserMemory, ALengthOfZeroCopiesNothing) {
  char target[1] = {'?'};
  EXPECT_EQ(size_t{0}, vexCopyFromUser(target, addressOf(kText), 0));
  EXPECT_EQ(size_t{0}, vexCopyFromUser(target, 0, 0));
  EXPECT_EQ(size_t{0}, vexCopyToUser(0, kText, 0));
  EXPECT_EQ('?', target[0]);
}

TEST(VexkUserMemory, TheNullPageIsABadAddress) {
  char target[4] = {'?', '?', '?', '?'};
  EXPECT_EQ(size_t{0}, vexCopyFromUser(target, 0, sizeof target));
  EXPECT_EQ(size_t{0}, vexCopyToUser(16, target, sizeof target));
  EXPECT_EQ('?', target[0]);
}

TEST(VexkUserMemory, ALengthThatWrapsCopiesNothing) {
  char target[16] = {};
  EXPECT_EQ(size_t{0}, vexCopyFromUser(target, UINT64_MAX - 3, sizeof target));
  EXPECT_EQ(size_t{0}, vexCopyToUser(UINT64_MAX, target, sizeof target));
}
