// The racks that come with the component. Whoever changes them changes these expectations: they are
// what the demo promises to show.

#include <fstream>
#include <iterator>
#include <map>

#include "slotbusSupport.h"

using namespace nSLOTBUS100;

namespace {

std::string readRack(char const* name) {
  std::ifstream file(OXDIAG_SOURCE_DIR "/examples/slotbus/" + std::string(name), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

// The sentences of the failures by line number, from the traced lines "line N: SENTENCE: ...".
std::map<u32, std::string> findFailures(std::string const& traced) {
  std::map<u32, std::string> found;
  size_t const sentenceLimit = 40;
  for (size_t place = traced.find("line "); place != std::string::npos;
       place = traced.find("line ", place + 1)) {
    size_t const colon = traced.find(": ", place);
    u32 const number = static_cast<u32>(std::strtoul(traced.c_str() + place + 5, nullptr, 10));
    if (colon > place + 9) continue;
    found[number] = traced.substr(colon + 2, sentenceLimit);
  }
  return found;
}

std::string lineOf(std::string const& text, u32 number) {
  size_t place = 0;
  for (u32 line = 1; line < number; ++line) place = text.find('\n', place) + 1;
  return text.substr(place, text.find('\n', place) - place);
}

}  // namespace

TEST(SlotbusDefaultRack, IsGoodInEveryLine) {
  tReadRack const read(readRack("rack.txt"));
  EXPECT_EQ(read.result, 0U);
  EXPECT_EQ(read.reader.getFailureCount(), 0U);
  EXPECT_EQ(read.rack.getCount(), 18U);
}

TEST(SlotbusFaultyRack, HasAtLeastTwentyGoodDevices) {
  tReadRack const read(readRack("faulty.txt"));
  EXPECT_EQ(read.rack.getCount(), 27U);
}

TEST(SlotbusFaultyRack, IsBadInSevenLines) {
  tReadRack const read(readRack("faulty.txt"));
  EXPECT_EQ(read.result, 1U);
  EXPECT_EQ(read.reader.getFailureCount(), 7U);
}

TEST(SlotbusFaultyRack, EveryBadLineIsWrongInItsOwnWay) {
  std::string const text = readRack("faulty.txt");
  tReadRack const read(text);
  std::map<std::string, std::string> const wanted = {
      {"1O |", describeStatusCode(kStatusSlotNotANumber)},
      {"15 |", describeStatusCode(kStatusInstanceTaken)},
      {"121|", describeStatusCode(kStatusSlotOutOfRange)},
      {"24 |", describeStatusCode(kStatusNoHardwareId)},
      {"27 |", describeStatusCode(kStatusSlotTaken)},
      {"28 |", describeStatusCode(kStatusMissingField)},
      {"32 |", describeStatusCode(kStatusBlankInHardwareId)}};
  std::map<std::string, std::string> found;
  for (auto const& [number, sentence] : findFailures(read.traced())) {
    found[lineOf(text, number).substr(0, 4)] = sentence;
  }
  ASSERT_EQ(found.size(), wanted.size());
  for (auto const& [line, sentence] : wanted) {
    EXPECT_EQ(found[line].find(sentence.substr(0, 20)), 0U) << line << found[line];
  }
}

TEST(SlotbusFaultyRack, TheSummaryIsTheLastLine) {
  tReadRack const read(readRack("faulty.txt"));
  std::string const last = "devices: 27, failures: 7, lines: 62\n";
  ASSERT_GE(read.traced().size(), last.size());
  EXPECT_EQ(read.traced().substr(read.traced().size() - last.size()), last);
}

TEST(SlotbusFaultyRack, SummaryAloneIsOneLine) {
  tReadRack const read(readRack("faulty.txt"), "verbosity>=150");
  EXPECT_EQ(read.traced().find('\n'), read.traced().size() - 1);
}
