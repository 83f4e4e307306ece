// Calls that fail at random, and again in the same places with the same seed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "ntos/pool.h"
#include "ntoshost/faults.h"

namespace {

constexpr u32 kTag = ntosPoolTag("rand");
constexpr int kCalls = 2000;

class RandomFaults : public testing::Test {
 protected:
  ~RandomFaults() override { ntoshost::clearFaults(); }

  // Which of the allocations fail, one character each.
  static std::string pattern(int calls = kCalls) {
    std::string result;
    for (int i = 0; i < calls; ++i) {
      void* const block = ExAllocatePoolWithTag(NonPagedPoolNx, 8, kTag);
      result += block == nullptr ? 'x' : '.';
      if (block != nullptr) ExFreePoolWithTag(block, kTag);
    }
    return result;
  }

  // What is printed by the call.
  template <class Call>
  static std::string printed(Call call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
  }
};

using RandomFaultsDeathTest = RandomFaults;

TEST_F(RandomFaults, ASeedRepeatsThem) {
  ntoshost::failRandomly(ntoshost::kFaultMemory, 600, 42);
  std::string const first = pattern();
  u64 const injected = ntoshost::faultsInjected();
  ntoshost::failRandomly(ntoshost::kFaultMemory, 600, 42);
  EXPECT_EQ(pattern(), first);
  EXPECT_EQ(ntoshost::faultsInjected(), injected);
  ntoshost::failRandomly(ntoshost::kFaultMemory, 600, 43);
  EXPECT_NE(pattern(), first);
}

TEST_F(RandomFaults, AboutAsManyFailAsWereAskedFor) {
  for (u32 const chance : {100u, 600u, 5000u}) {
    ntoshost::failRandomly(ntoshost::kFaultMemory, chance, 7);
    pattern(20'000);
    EXPECT_GT(ntoshost::faultsInjected(), u64{chance} * 2 * 8 / 10) << chance;
    EXPECT_LT(ntoshost::faultsInjected(), u64{chance} * 2 * 12 / 10) << chance;
  }
}

TEST_F(RandomFaults, NoneAndAllAreChancesToo) {
  ntoshost::failRandomly(ntoshost::kFaultMemory, 0, 1);
  EXPECT_EQ(pattern(100), std::string(100, '.'));
  ntoshost::failRandomly(ntoshost::kFaultMemory, ntoshost::kFaultChances, 1);
  EXPECT_EQ(pattern(100), std::string(100, 'x'));
}

TEST_F(RandomFaults, OtherKindsAreLeftAlone) {
  ntoshost::failRandomly(ntoshost::kFaultFile, ntoshost::kFaultChances, 1);
  EXPECT_EQ(pattern(100), std::string(100, '.'));
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST_F(RandomFaults, CountingEndsThem) {
  ntoshost::failRandomly(ntoshost::kFaultMemory, ntoshost::kFaultChances, 1);
  ntoshost::failNth(ntoshost::kFaultMemory, 2);
  EXPECT_EQ(pattern(4), ".x..");
}

TEST_F(RandomFaults, TheSeedIsPrinted) {
  EXPECT_EQ(printed([] { ntoshost::failRandomly(1, 600, 42); }),
            "ntos: 600 of 10000 calls of the kinds 0x1 fail at random, seed 42\n");
}

TEST_F(RandomFaults, ZeroPicksASeed) {
  u64 seed = 0;
  std::string const line = printed([&] { seed = ntoshost::failRandomly(1, 600, 0); });
  EXPECT_NE(seed, 0u);
  EXPECT_NE(line.find("seed " + std::to_string(seed) + "\n"), std::string::npos) << line;
  std::string const first = pattern();
  ntoshost::failRandomly(1, 600, seed);
  EXPECT_EQ(pattern(), first);
}

TEST_F(RandomFaultsDeathTest, AChanceHasALimit) {
  EXPECT_DEATH(ntoshost::failRandomly(1, ntoshost::kFaultChances + 1, 1),
               "ntos: failRandomly was asked to fail 10001 of 10000 calls\\.");
}

// The variable is looked at once in a program, so each of these is one.
class FailingProgram : public RandomFaults {
 protected:
  FailingProgram() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
  ~FailingProgram() override {
    unsetenv("OXDIAG_FAIL_RANDOMLY");
    testing::GTEST_FLAG(death_test_style) = "fast";
  }

  [[noreturn]] static void printPattern() {
    fputs(pattern(40).c_str(), stderr);
    exit(0);
  }
};

using FailingProgramDeathTest = FailingProgram;

TEST_F(FailingProgramDeathTest, TheEnvironmentSaysSo) {
  setenv("OXDIAG_FAIL_RANDOMLY", "42,5000,0x1", 1);
  std::string said;
  auto const keep = [&said](std::string const& text) {
    said = text;
    return true;
  };
  EXPECT_EXIT(printPattern(), testing::ExitedWithCode(0), testing::Truly(keep));
  unsetenv("OXDIAG_FAIL_RANDOMLY");
  ntoshost::failRandomly(1, 5000, 42);
  EXPECT_EQ(said,
            "ntos: 5000 of 10000 calls of the kinds 0x1 fail at random, seed 42\n" + pattern(40));
}

TEST_F(FailingProgramDeathTest, ASeedAloneIsEnough) {
  setenv("OXDIAG_FAIL_RANDOMLY", "42", 1);
  EXPECT_EXIT(printPattern(), testing::ExitedWithCode(0),
              "ntos: 600 of 10000 calls of the kinds 0xffffffff fail at random, seed 42\n");
}

TEST_F(FailingProgramDeathTest, NonsenseIsRefused) {
  for (char const* text : {"", "x", "1,", "1,2,3,4", "1,2 3", "1,10001", "1,2,0x100000000"}) {
    setenv("OXDIAG_FAIL_RANDOMLY", text, 1);
    EXPECT_DEATH(printPattern(), "OXDIAG_FAIL_RANDOMLY is '.*'; it has to be SEED") << text;
  }
}

}  // namespace
