// The line of a place whose prefix is copied is, to the byte, the one that putPrefix writes: for
// random places, on streams of random shapes.

#include <gtest/gtest.h>

#include <random>

#include "keptLines.h"
#include "oxdiagk/tDestinationSlot.h"
#include "rounds.h"
#include "tLastBytes.h"

using nOXDIAG100::tLineBuffer;
using nOXDIAG100::tLineOrigin;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceSite;

namespace {

constexpr int kSites = roundsOf(400'000);
constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);

// Null, or text of any length about that of the text of a site, rarely with a character that means
// something.
class tRandomName {
 public:
  explicit tRandomName(std::mt19937& random) : isNull(random() % 16 == 0) {
    static std::string const rare = "\n/\\- ]";
    size_t const length = random() % 4 == 0 ? 40 + random() % 30 : random() % 20;
    for (size_t index = 0; index < length; ++index) {
      text += random() % 24 == 0 ? rare[random() % rare.size()]
                                 : static_cast<char>('a' + random() % 26);
    }
  }

  char const* get() const { return isNull ? nullptr : text.c_str(); }

 private:
  bool const isNull;
  std::string text;
};

u32 randomNumber(std::mt19937& random) {
  static u32 const numbers[] = {0, 1, 9, 10, 99, 100, 12345, 999'999'999, 4'294'967'295};
  return numbers[random() % std::size(numbers)];
}

// Mostly as at the start, where prefixes are copied.
void shape(std::mt19937& random, tTrace& trace) {
  random() % 8 == 0 ? trace.disableComponentName() : trace.enableComponentName();
  random() % 8 == 0 ? trace.enableComponentVersion() : trace.disableComponentVersion();
  random() % 8 == 0 ? trace.disableLineNumber() : trace.enableLineNumber();
  random() % 8 == 0 ? trace.disableFileName() : trace.enableFileName();
  random() % 8 == 0 ? trace.enableFilePath() : trace.disableFilePath();
  random() % 8 == 0 ? trace.enableVerbosity() : trace.disableVerbosity();
  random() % 8 == 0 ? trace.disableTruncation() : trace.enableTruncation();
  random() % 2 == 0 ? trace.disableIndenting() : trace.enableIndenting();
  random() % 8 == 0 ? trace.disable() : trace.enable();
  trace.setMinPrefixWidth(random() % 2 == 0 ? 50 : random() % 70);
}

// What arrives of one line that is opened by `open`, behind `before` characters without an end.
template <class Open>
std::vector<std::string> write(tOwnTrace& trace, tKeptLines& kept, u32 before, Open open) {
  kept.pieces.clear();
  trace.put(std::string(before, '.').c_str());
  tTrace* const line = open();
  if (line != nullptr) line->put("text").endl();
  trace.put("|\n");
  return kept.pieces;
}

void expectSameLine(std::mt19937& random, tOwnTrace& trace, tKeptLines& kept) {
  tRandomName const component(random);
  tRandomName const file(random);
  tLineOrigin const origin{component.get(), file.get(), kVersion, randomNumber(random)};
  tTraceSite const site(origin);
  u32 const verbosity = random() % 8 == 0 ? 99 : 100 + random() % 3;
  u32 const before = random() % 4 == 0 ? random() % 254 : 0;
  auto const wanted = write(trace, kept, before, [&]() -> tTrace* {
    return &trace.putPrefix(origin.component, kVersion, origin.line, origin.file, verbosity,
                            tTrace::kTraceLine);
  });
  auto const ofSite = write(trace, kept, before, [&] { return trace.openLine(site, verbosity); });
  auto const ofOrigin =
      write(trace, kept, before, [&] { return trace.openLine(origin, verbosity); });
  ASSERT_EQ(wanted, ofSite);
  ASSERT_EQ(wanted, ofOrigin);
}

}  // namespace

TEST(SiteShapes, ALineOfASiteIsThatOfPutPrefix) {
  std::mt19937 random(11);
  tKeptLines kept;
  tOwnTrace trace(kept);
  for (int round = 0; round < kSites; ++round) {
    shape(random, trace);
    if (random() % 4 == 0) {
      trace.putPrefix("", kVersion, 1, "", 100,
                      random() % 2 == 0 ? tTrace::kBlockEntry : tTrace::kBlockExit);
      trace.endl();
    }
    expectSameLine(random, trace, kept);
    if (HasFatalFailure()) FAIL() << "round " << round;
  }
}

// Whether the text is copied is not seen in the bytes.
TEST(SiteShapes, ATextWithoutNewlineIsCopied) {
  constexpr tTraceSite usual(tLineOrigin{"slotbus", "examples/slotbus/tRack.cpp", kVersion, 120});
  static_assert(usual.isSomewhere() && usual.isCopied());
  constexpr tTraceSite withNewline(tLineOrigin{"slot\nbus", "tRack.cpp", kVersion, 120});
  static_assert(withNewline.isSomewhere() && !withNewline.isCopied());
  constexpr tTraceSite nowhere;
  static_assert(!nowhere.isSomewhere() && !nowhere.isCopied());
}

TEST(SiteShapes, ATextIsTheFieldsAndDashesBehindThem) {
  constexpr tTraceSite site(tLineOrigin{"rack", "a/b\\c.cpp", kVersion, 4'294'967'295});
  std::string text(site.getText(), tTraceSite::kTextSize);
  std::string wanted = "[rack--4294967295--c.cpp";
  wanted.resize(tTraceSite::kTextSize, '-');
  EXPECT_EQ(wanted, text);
}

TEST(SiteShapes, FieldsAreCutAtTheEndOfTheText) {
  for (size_t length = 40; length < 60; ++length) {
    std::string const file(length, 'f');
    tTraceSite const site(tLineOrigin{"rack", file.c_str(), kVersion, 7});
    std::string wanted = "[rack--7--" + file;
    wanted.resize(tTraceSite::kTextSize, '-');
    EXPECT_EQ(wanted, std::string(site.getText(), tTraceSite::kTextSize));
  }
}

// Behind them nothing is read.
TEST(SiteShapes, APrefixIsMadeOfTheCopiedCharacters) {
  std::string const text(tLineBuffer::kCopied, 'p');
  tLastBytes const copied(text.data(), text.size());
  tKeptLines kept;
  nOXDIAG100::iTraceDestination* current = &kept;
  nOXDIAG100::tDestinationSlot slot(current);
  tLineBuffer buffer;
  EXPECT_TRUE(buffer.appendPrefix(copied.bytes, 3));
  EXPECT_TRUE(buffer.appendPrefix(copied.bytes, tLineBuffer::kCopied));
  buffer.endPiece(slot);
  EXPECT_EQ("ppp] " + text + "] \n", kept.text());
}

TEST(SiteShapes, AnUnknownPlaceIsNowhere) {
  tTraceSite const nowhere;
  EXPECT_EQ(nowhere.component, nullptr);
  EXPECT_EQ(nowhere.file, nullptr);
  EXPECT_EQ(nowhere.line, 0u);
}
