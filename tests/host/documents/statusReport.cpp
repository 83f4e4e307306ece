// The report of a status that docs/status.md shows, beside the one that the tool makes of it.

#include <sstream>

#include "documents/tDocument.h"
#include "oxdiagreport/textFormat.h"
#include "patterns.h"
#include "slotbus/savedStatuses.h"

namespace {

constexpr u32 kLinesInFront = 31;

// The indented block behind this line of the document, without the indentation.
std::string blockBehind(std::string const& introduction) {
  std::istringstream lines(tDocument("docs/status.md").getText());
  std::string block;
  bool isBehind = false;
  for (std::string line; std::getline(lines, line);) {
    bool const isIndented = line.rfind("    ", 0) == 0;
    if (isBehind && !line.empty() && !isIndented) break;
    if (isBehind && isIndented) block += line.substr(4) + "\n";
    isBehind = isBehind || line == introduction;
  }
  return block;
}

std::string withoutTime(std::string const& text) {
  return replaceAll(text, "Time: [0-9]+ [A-Z][a-z]+ [0-9]{4}, [0-9:]{8} UTC", "Time: T");
}

}  // namespace

TEST(StatusReport, IsThatOfTheDocument) {
  std::string const rack = std::string(kLinesInFront, '\n') + "1O | 5400102 | A | d\n";
  std::string report;
  tWordFile words;
  std::string problem;
  ASSERT_TRUE(words.add(
      readInput(OXDIAG_SOURCE_DIR "/examples/slotbus/words/english.words", problem).value(),
      problem));
  forEachStatus(savedBytes(rack), [&](nOXDIAG100::tStatus2 const& status) {
    if (report.empty()) report = textOf(status, 1, tLanguage("english", words), {});
  });
  EXPECT_NE(report.find("Time: "), std::string::npos);
  EXPECT_EQ(withoutTime(blockBehind("prints one paragraph a status:")), withoutTime(report));
}
