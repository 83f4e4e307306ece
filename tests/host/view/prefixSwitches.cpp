// Every combination of the switches of a prefix, as the library writes it, read field by field.

#include <gtest/gtest.h>

#include <bit>
#include <optional>

#include "support/recordingDestination.h"
#include "trace/startedModules.h"
#include "viewTest.h"

namespace {

using nOXDIAG100::tTrace;
using oxdiagview::kFieldCount;
using oxdiagview::tKind;

constexpr char const* kWords[kFieldCount] = {"compname", "compver",   "linenumber", "filename",
                                             "threadid", "timestamp", "timedelta",  "verbosity"};
constexpr u32 kFieldMask = (1u << kFieldCount) - 1;
constexpr u32 kDeltaBit = 1u << oxdiagview::kDelta;
constexpr u32 kFileBit = 1u << oxdiagview::kFile;
constexpr size_t kLegendLines = 1;

struct tSettings {
  u32 fields;
  bool hasPath;
  bool isIndented;
  u32 width;
  bool isTruncated;

  std::string getWords() const {
    std::string words = "--filter verbosity>=0 --prefixwidth " + std::to_string(width);
    for (u32 field = 0; field < kFieldCount; ++field) {
      words += std::string(" --") + kWords[field] + ((fields >> field & 1) != 0 ? " on" : " off");
    }
    words += std::string(" --filepath ") + (hasPath ? "on" : "off");
    words += std::string(" --indent ") + (isIndented ? "on" : "off");
    return words + " --truncation " + (isTruncated ? "on" : "off");
  }
};

struct tWrittenLine {
  char const* component;  // of several lengths, so that prefixes are that are not cut
  u32 line;
  u32 verbosity;
  tTrace::tTraceType type;
  char const* text;
  tKind kind;
  u32 depth;
};

constexpr tWrittenLine kWrittenLines[] = {
    {"rack", 17, 100, tTrace::kTraceLine, "the first text", tKind::kLine, 0},
    {"rackbus", 21, 60, tTrace::kBlockEntry, "open; {", tKind::kBlockBegin, 0},
    {"rackbus", 230, 120, tTrace::kTraceLine, "slot 3: ready", tKind::kLine, 1},
    {"rackbus", 1045, 60, tTrace::kBlockEntry, "probe; this=0x7FFE10; tStatus2 code=-5 {",
     tKind::kBlockBegin, 1},
    {"rack", 99, 105, tTrace::kTraceLine, "ASSERTION WARNING: no such slot", tKind::kAssertion, 2},
    {"rackbus", 1045, 60, tTrace::kBlockExit, "} tStatus2 code=-7; probe", tKind::kBlockEnd, 1},
    {"rackbus", 21, 60, tTrace::kBlockExit, "} open", tKind::kBlockEnd, 0},
    {"rack", 40, 150, tTrace::kTraceLine, "the last text", tKind::kLine, 0},
};

std::string write(tSettings const& settings, bool hasLegend) {
  tTextDestination destination;
  tPrivateTrace trace(destination);
  trace.configure(settings.getWords().c_str());
  if (hasLegend) trace.putPrefixPrototype().endl();
  constexpr tSSVersion kVersion(1, 2, 3, tSSVersion::kPhaseReleased, 4, 0);
  for (tWrittenLine const& line : kWrittenLines) {
    trace.putPrefix(line.component, kVersion, line.line, "folder/rackLine.cpp", line.verbosity,
                    line.type);
    trace.put(line.text).endl();
  }
  return destination.text;
}

// What stands in the fields of a prefix, by somebody who knows the switches.
std::vector<std::string> partsOf(std::string const& raw) {
  std::vector<std::string> parts;
  std::string content = raw.substr(1, raw.find("] ") - 1);
  content.erase(content.find_last_not_of('-') + 1);
  for (size_t place = 0; place <= content.size();) {
    size_t const end = std::min(content.find("--", place), content.size());
    parts.push_back(content.substr(place, end - place));
    place = end + 2;
  }
  return parts;
}

std::string fieldOf(tKeptRecord const& record, u32 field) {
  auto const text = [](auto number) { return number ? std::to_string(*number) : ""; };
  char thread[24] = "";
  if (record.thread) std::snprintf(thread, sizeof(thread), "0x%X", *record.thread);
  std::string const delta =
      record.delta ? std::to_string(static_cast<u64>(*record.delta)) : std::string();
  std::string const all[kFieldCount] = {
      record.component,   record.version, text(record.sourceLine), record.file, thread,
      text(record.stamp), delta,          text(record.verbosity)};
  return all[field];
}

// The place of the prefix' end, when there is a prefix that does not end with padding.
std::optional<size_t> endOfWholePrefix(tKeptRecord const& record) {
  size_t const end = record.raw.find("] ");
  bool const isThere = end != std::string::npos && end != 0 && record.raw[end - 1] != '-';
  return isThere ? std::optional(end) : std::nullopt;
}

// A prefix may have been cut where it has no padding: then its last part is not believed, but for
// the beginning of a file's name.
bool mayBeCut(tKeptRecord const& record, tSettings const& settings) {
  return settings.isTruncated && endOfWholePrefix(record) == settings.width - 1;
}

// A whole prefix may by chance have the length of those that were cut; nobody can tell it then.
bool looksCut(tKeptRecord const& record, tSettings const& settings) {
  std::optional<size_t> const end = endOfWholePrefix(record);
  return end && (*end == settings.width - 1 || (*end > 18 && (*end + 1) % 10 == 0));
}

void expectFields(tKeptRecord const& record, tSettings const& settings) {
  std::vector<std::string> const parts =
      settings.fields == 0 ? std::vector<std::string>() : partsOf(record.raw);
  size_t index = 0;
  for (u32 field = 0; field < kFieldCount; ++field) {
    bool const isThere = (settings.fields >> field & 1) != 0 && index < parts.size();
    std::string wanted = isThere ? parts[index] : "";
    bool const isLast = isThere && index + 1 == parts.size();
    bool const isText = field == oxdiagview::kComponent || field == oxdiagview::kFile;
    bool const isDoubted = looksCut(record, settings) && fieldOf(record, field).empty();
    if (isLast && !isText && (isDoubted || mayBeCut(record, settings))) wanted = "";
    EXPECT_EQ(fieldOf(record, field), wanted) << kWords[field] << " of " << record.raw;
    if (isThere) ++index;
  }
}

void expectTrace(tSettings const& settings, bool hasLegend) {
  SCOPED_TRACE(settings.getWords() + (hasLegend ? ", with a legend" : ""));
  std::vector<tKeptRecord> const records = readTrace(write(settings, hasLegend));
  size_t const first = hasLegend ? kLegendLines : 0;
  ASSERT_EQ(records.size(), first + std::size(kWrittenLines));
  for (size_t index = 0; index < std::size(kWrittenLines); ++index) {
    tKeptRecord const& record = records[first + index];
    expectFields(record, settings);
    EXPECT_EQ(record.text, kWrittenLines[index].text) << record.raw;
    EXPECT_EQ(record.kind, kWrittenLines[index].kind) << record.raw;
    EXPECT_EQ(record.depth, kWrittenLines[index].depth) << record.raw;
    EXPECT_TRUE(record.hasPrefix) << record.raw;
  }
}

void expectAllCombinations(u32 width, bool isTruncated, bool hasLegend, u32 among = kFieldMask) {
  for (u32 fields = 0; fields <= kFieldMask; ++fields) {
    if ((fields & ~among) != 0) continue;
    bool const isIndented = std::popcount(fields) % 2 != 0;
    expectTrace({fields, false, isIndented, width, isTruncated}, hasLegend);
    if ((fields & kFileBit) != 0) {
      expectTrace({fields, true, !isIndented, width, isTruncated}, hasLegend);
    }
    if (testing::Test::HasFailure()) break;
  }
}

}  // namespace

TEST(PrefixSwitches, EveryCombinationIsReadInWidePrefixes) {
  expectAllCombinations(140, true, false);
}

TEST(PrefixSwitches, EveryCombinationIsReadInPrefixesOfTheUsualWidthBehindALegend) {
  expectAllCombinations(50, true, true);
}

// The few deltas that have room could be verbosities as well.
TEST(PrefixSwitches, EveryCombinationWithoutDeltasIsReadInPrefixesOfTheUsualWidth) {
  expectAllCombinations(50, true, false, kFieldMask & ~kDeltaBit);
}

TEST(PrefixSwitches, EveryCombinationIsReadInPrefixesThatAreNotCut) {
  expectAllCombinations(50, false, false);
}

TEST(PrefixSwitches, EveryCombinationIsReadInPrefixesWithoutPadding) {
  expectAllCombinations(0, false, false);
}

TEST(PrefixSwitches, EveryCombinationIsReadBehindALegend) {
  expectAllCombinations(140, true, true);
}

TEST(PrefixSwitches, APrefixOfWidthOneIsItsEnd) {
  expectTrace({0, false, true, 1, true}, false);
}
