// Texts that are too long, too many or changed while they are read: formats, option texts, filters.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "keptLines.h"
#include "ntoshost/executive.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "racingThreads.h"
#include "rounds.h"
#include "startedModules.h"
#include "support/assertSwitches.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;

constexpr size_t kMebibyte = 1 << 20;
constexpr u32 kDeepest = 64;
constexpr int kReads = roundsOf(16'000);

std::string repeated(std::string const& text, size_t size = kMebibyte) {
  std::string all;
  all.reserve(size + text.size());
  while (all.size() < size) all += text;
  return all;
}

std::string settingsOf(tConfigurable& object) {
  unsigned int needed = 0;
  object.inquire(nullptr, 0, &needed);
  std::string text(needed, 0);
  object.inquire(text.data(), needed, nullptr);
  text.resize(needed - 1);
  return text.substr(0, text.find(" --calibrate"));  // what is restored is calibrated anew
}

class HostileFormats : public testing::TestWithParam<char const*> {
 protected:
  tKeptLines kept;
  tOwnTrace trace{kept};
};

// The whole text of a stream that writes nothing but this.
TEST_P(HostileFormats, OfAMebibyteGiveOneTextThatIsCut) {
  std::string const format = repeated(GetParam());
  int unused = 0;
  trace.putf(format.c_str(), &unused, &unused, &unused, &unused).endl();
  EXPECT_LE(kept.text().size(), tTrace::kMaxTraceLine + 60u);
  kept.pieces.clear();
  trace.put("next").endl();
  EXPECT_EQ(kept.text(), "next\n");
}
INSTANTIATE_TEST_SUITE_P(, HostileFormats,
                         testing::Values("x", "%", "%n", "%99999999999999999999d", "%-", "%.", "%y",
                                         "%f"));

// Both of the library's objects, with their settings as they were at the end.
class HostileOptions : public testing::TestWithParam<char const*> {
 protected:
  tKeptLines kept;
  tOwnTrace trace{kept};
  tPrivateContracts contracts;
};

TEST_P(HostileOptions, OfAMebibyteAreReadToTheirEnd) {
  std::string const text = repeated(GetParam());
  for (tConfigurable* object :
       {static_cast<tConfigurable*>(&trace), static_cast<tConfigurable*>(&contracts)}) {
    std::string const before = settingsOf(*object);
    object->pushConfiguration();
    object->configure(text.c_str());
    settingsOf(*object);
    object->popConfiguration();
    if (object == &trace) {
      EXPECT_EQ(settingsOf(*object), before);
    }
  }
  trace.put("next").endl();
  EXPECT_EQ(kept.pieces.back(), "next\n");
}
INSTANTIATE_TEST_SUITE_P(, HostileOptions,
                         testing::Values("x", "\"", "\"\" ", "-- ", " ", "--filter line==5 ",
                                         "line==5&&", "--category ", "--mutex-kernel-token 5:0 "));

TEST(HostileNames, OfAMebibyteNameACategory) {
  tPrivateContracts contracts;
  std::string const name = repeated("n");
  contracts.configure(("--category " + name + " --break off").c_str());
  EXPECT_TRUE(contracts.checksAreEnabled(name.c_str()));
  EXPECT_FALSE(contracts.breakOnViolationIsEnabled(name.c_str()));
  EXPECT_NE(settingsOf(contracts).find(name), std::string::npos);
}

TEST(HostileLevels, OfBlocksAreIndentedAndLeft) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  auto const write = [&](tTrace::tTraceType type) {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, type).put("x").endl();
  };
  for (u32 level = 0; level < kDeepest; ++level) write(tTrace::kBlockEntry);
  EXPECT_EQ(trace.getNestingLevel(), static_cast<i32>(kDeepest));
  for (u32 level = 0; level < kDeepest; ++level) write(tTrace::kBlockExit);
  EXPECT_EQ(trace.getNestingLevel(), 0);
  EXPECT_EQ(kept.pieces.size(), 2u * kDeepest);
}

TEST(HostileLevels, OfSavedConfigurationsAreRestored) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  for (u32 level = 1; level <= kDeepest; ++level) {
    trace.setMinPrefixWidth(level);
    trace.pushConfiguration();
  }
  for (u32 level = kDeepest; level >= 1; --level) {
    trace.setMinPrefixWidth(0);
    trace.popConfiguration();
    EXPECT_EQ(trace.getMinPrefixWidth(), level);
  }
}

// Lines that a client opens and never ends: the next one is its own, and memory stays what it is.
TEST(NeverEnded, LinesArriveInPiecesAndLeaveNothingBehind) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.put("first").endl();
  u64 const before = ntoshost::outstandingBytes();
  for (int line = 0; line < 10'000; ++line) {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine).put("text");
  }
  EXPECT_EQ(ntoshost::outstandingBytes(), before);
  EXPECT_GT(kept.pieces.size(), 1'000u);
  trace.endl();
  kept.pieces.clear();
  trace.put("next").endl();
  EXPECT_EQ(kept.text(), "next\n");
}

// With the line mutex each of them holds the lock once more, as often as it can be held.
TEST(NeverEnded, LockedLinesAreGivenBackByAsManyEnds) {
  constexpr u32 kLines = kSyncMaximumDepth + 10;
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.enableMutex();
  for (u32 line = 0; line < kLines; ++line) {
    trace.putPrefix("test", tSSVersion(), 1, "file", 100, tTrace::kTraceLine);
  }
  for (u32 line = 0; line < kLines; ++line) trace.endl();
  kept.pieces.clear();
  runAtOnce(1, [&] { trace.putPrefix("t", tSSVersion(), 1, "f", 100, tTrace::kTraceLine).endl(); });
  EXPECT_EQ(kept.pieces.size(), 1u);
  trace.disableMutex();
}

// Somebody changes the text from under whoever reads it.
class tChangingText {
 public:
  explicit tChangingText(std::string text) : bytes(std::move(text)) {}

  void change(std::atomic<bool> const& isOver) {
    constexpr char kLetters[] = {' ', '"', 'x', '-', '\t', '='};
    for (size_t step = 0; !isOver; ++step) {
      char& place = bytes[step * 7 % bytes.size()];
      char const before = __atomic_load_n(&place, __ATOMIC_RELAXED);
      __atomic_store_n(&place, kLetters[step % sizeof(kLetters)], __ATOMIC_RELAXED);
      for (int pause = 0; pause < 10; ++pause) __builtin_ia32_pause();
      __atomic_store_n(&place, before, __ATOMIC_RELAXED);
    }
  }
  char* get() { return bytes.data(); }

  // Reads again and again while another thread changes it.
  template <class Read>
  void race(Read read) {
    std::atomic<bool> isOver = false;
    std::atomic<bool> isReader = true;
    runAtOnce(2, [&] {
      if (!isReader.exchange(false)) return change(isOver);
      for (int round = 0; round < kReads; ++round) read();
      isOver = true;
    });
  }

 private:
  std::string bytes;
};

TEST(ChangingOptions, AreReadOnceAndWithinTheirMemory) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tPrivateContracts contracts;
  tChangingText text("--timestamp on --filter line==5&&file==a --prefixwidth 17 --category c ");
  text.race([&] {
    trace.configure(text.get());
    contracts.configure(text.get());
  });
  trace.configure("--enabled on");
  EXPECT_FALSE(settingsOf(trace).empty());
}

// As words, which nobody copies before they are read.
TEST(ChangingOptions, AreAlsoReadAsWords) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tChangingText filter("line==5&&file==abc&&component!=defghijklmnopqrstuvwxyz");
  char option[] = "--filter";
  char* words[] = {option, filter.get()};
  filter.race([&] { trace.configure(2, words); });
  trace.configure("--filter line==5");
  EXPECT_NE(settingsOf(trace).find("linenumber==5"), std::string::npos) << settingsOf(trace);
}

// Every argument is a text: whichever letter a conversion has at last, it may read that.
TEST(ChangingFormats, GiveTextThatIsNeverTooLong) {
  tKeptLines kept;
  tOwnTrace trace(kept);
  tChangingText format("a %d b %s c %5d %-5s %%");
  tChangingText argument("an argument that changes as well, while it is measured and copied");
  u64 longest = 0;
  format.race([&] {
    char const* const text = argument.get();
    trace.putf(format.get(), text, text, text, text, text, text, text, text).endl();
    longest = std::max<u64>(longest, kept.text().size());
    kept.pieces.clear();
  });
  EXPECT_LE(longest, tTrace::kMaxTraceLine + 60u);
}

}  // namespace
