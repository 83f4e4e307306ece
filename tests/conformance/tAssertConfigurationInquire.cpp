// What the assertion configuration says about its settings.

#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/tTexts.h"

namespace {

constexpr char kDefaults[] =
    " --category default --terminate off --break on --preconditions on --postconditions on"
    " --classinvariants on --loopinvariants on --checks on --exceptions on"
    " --category statusFatal --terminate off --break on --preconditions on --postconditions on"
    " --classinvariants on --loopinvariants on --checks on --exceptions off"
    " --category statusWarning --terminate off --break on --preconditions on --postconditions on"
    " --classinvariants on --loopinvariants on --checks on --exceptions off"
    " --category warning --terminate off --break off --preconditions on --postconditions on"
    " --classinvariants on --loopinvariants on --checks on --exceptions on";

constexpr u32 kNeeded = sizeof(kDefaults);

// A buffer in fixed storage with a margin that must stay untouched.
constinit char inquiryStorage[kNeeded + 64] = {};

char* freshBuffer() {
  __builtin_memset(inquiryStorage, '#', sizeof(inquiryStorage));
  return inquiryStorage;
}

// Where the category stands in the text: the offset behind " --category ", or -1.
i32 placeOf(char const* text, char const* category) {
  constexpr char kOption[] = " --category ";
  constexpr size_t kOptionLength = sizeof(kOption) - 1;
  size_t const length = __builtin_strlen(category);
  size_t const end = __builtin_strlen(text);
  for (size_t at = 0; at + kOptionLength + length < end; ++at) {
    if (__builtin_memcmp(text + at, kOption, kOptionLength) != 0) continue;
    char const* const name = text + at + kOptionLength;
    if (__builtin_memcmp(name, category, length) == 0 && name[length] == ' ') {
      return static_cast<i32>(at);
    }
  }
  return -1;
}

}  // namespace

TEST(AssertInquire, AFreshOneGivesTheBuiltInCategoriesInByteOrder) {
  tPrivateContracts contracts;
  tContractsText const inquired(contracts);
  EXPECT_STREQ(inquired.text, kDefaults);
  EXPECT_EQ(inquired.needed, kNeeded + 0u);
}

TEST(AssertInquire, EverySwitchIsShownInItsPlace) {
  tPrivateContracts contracts;
  contracts.configure(
      "--terminate --break off --preconditions off --postconditions off "
      "--classinvariants off --loopinvariants off --checks off --exceptions off");
  tContractsText const inquired(contracts);
  constexpr char kAllTurned[] =
      " --category default --terminate on --break off --preconditions off --postconditions off"
      " --classinvariants off --loopinvariants off --checks off --exceptions off"
      " --category statusFatal ";
  EXPECT_EQ(__builtin_memcmp(inquired.text, kAllTurned, sizeof(kAllTurned) - 1), 0);
}

TEST(AssertInquire, CategoriesAreInAscendingOrderOfUnsignedBytes) {
  tPrivateContracts contracts;
  char const* const ordered[] = {"Z",           "a",     "aa",    "ab",    "b",    "de",
                                 "statusFatal", "x\x7F", "x\x80", "x\xFF", "\x80", "\xFF"};
  for (char const* name :
       tTexts{"\xFF", "x\x80", "aa", "Z", "b", "x\xFF", "ab", "\x80", "a", "de", "x\x7F"}) {
    configureWords(contracts, "--category", name);
  }
  tContractsText const inquired(contracts);
  i32 last = -1;
  for (char const* name : ordered) {
    i32 const place = placeOf(inquired.text, name);
    EXPECT_LT(last, place);
    last = place;
  }
}

TEST(AssertInquire, TheNameIsWrittenAsItIs) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "my rack");
  configureWords(contracts, "--category", "");
  configureWords(contracts, "--category", "\"q");
  tContractsText const inquired(contracts);
  EXPECT_LE(0, placeOf(inquired.text, "my rack"));
  EXPECT_LE(0, placeOf(inquired.text, "\"q"));
  constexpr char kEmptyFirst[] = " --category  --terminate off ";
  EXPECT_EQ(__builtin_memcmp(inquired.text, kEmptyFirst, sizeof(kEmptyFirst) - 1), 0);
}

TEST(AssertInquire, InquiringChangesNothing) {
  tPrivateContracts contracts;
  configureWords(contracts, "--category", "warning");
  tContractsText const first(contracts, 0);
  tContractsText const second(contracts, 1);
  EXPECT_STREQ(first.text, second.text);
  configureWords(contracts, "--checks", "off");
  EXPECT_FALSE(contracts.checksAreEnabled("warning"));
}

TEST(AssertInquire, NeededSizeIsLearntWithoutABuffer) {
  tPrivateContracts contracts;
  unsigned int needed = 0;
  contracts.inquire(nullptr, 0, &needed);
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST(AssertInquire, NullBufferWithASizeStillTellsTheNeededSize) {
  tPrivateContracts contracts;
  unsigned int needed = 0;
  contracts.inquire(nullptr, 0xFFFFFFFF, &needed);
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST(AssertInquire, NeededSizeNeedNotBeAskedFor) {
  tPrivateContracts contracts;
  char* const buffer = freshBuffer();
  contracts.inquire(buffer, kNeeded, nullptr);
  EXPECT_STREQ(buffer, kDefaults);
  contracts.inquire(nullptr, 0, nullptr);
}

TEST(AssertInquire, SizeZeroTouchesNothing) {
  tPrivateContracts contracts;
  char* const buffer = freshBuffer();
  unsigned int needed = 0;
  contracts.inquire(buffer, 0, &needed);
  EXPECT_EQ(buffer[0], '#');
  EXPECT_EQ(needed, kNeeded + 0u);
}

TEST(AssertInquire, TextIsCutAtEverySizeAndTerminated) {
  tPrivateContracts contracts;
  for (unsigned int size = 1; size <= kNeeded; ++size) {
    char* const buffer = freshBuffer();
    unsigned int needed = 0;
    contracts.inquire(buffer, size, &needed);
    EXPECT_EQ(__builtin_memcmp(buffer, kDefaults, size - 1), 0);
    EXPECT_EQ(buffer[size - 1], '\0');
    EXPECT_EQ(buffer[size], '#');
    EXPECT_EQ(needed, kNeeded + 0u);
  }
}

TEST(AssertInquire, LastByteOfALargerBufferIsTerminatedToo) {
  tPrivateContracts contracts;
  for (u32 size = kNeeded + 1; size <= kNeeded + 10; ++size) {
    char* const buffer = freshBuffer();
    contracts.inquire(buffer, size, nullptr);
    EXPECT_STREQ(buffer, kDefaults);
    EXPECT_EQ(buffer[size - 1], '\0');
    EXPECT_EQ(buffer[size], '#');
  }
}

TEST(AssertInquire, InquiredTextConfiguresAnotherOneAlike) {
  tPrivateContracts source;
  source.configure(
      "--break off --category rack --terminate --checks off --category warning "
      "--break --category on --exceptions off");
  tContractsText const given(source, 0);
  tPrivateContracts target;
  target.configure(given.text);
  tContractsText const taken(target, 1);
  EXPECT_STREQ(given.text, taken.text);
}
