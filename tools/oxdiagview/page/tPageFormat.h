#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/page/tNameList.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Writes a trace as a page for a browser, whole in one file, which loads nothing. What is in the
// trace is data for the page, never a part of it.
//
// The page reads an object with these members:
//
//     title       text: what the page is called
//     lines       array of lines
//     components  array of texts, as are files and threads
//     leftOut     how many lines the trace has behind those of the page
//     isInTicks   true when times are ticks of the counter, for its rate is not known
//
// A line is an array: number, kind (tKind), mark (tMark), depth, component, file (indices, or -1),
// line of the source (or -1), verbosity (or -1), thread (index, or -1), time since the first line,
// delta (nanoseconds or ticks, or null), flags (tFlag), text; and the name of a block where one
// begins or ends.
class tPageFormat final : public iRecordSink {
 public:
  // More of them make browsers slow; the rest is counted.
  static constexpr uint64_t kMostLines = 500'000;

  // What a line is marked as in the page.
  enum tMark : int { kNone = 0, kWarning = 1, kFailure = 2 };
  enum tFlag : unsigned int { kPrefixed = 1, kCut = 2, kUnended = 4 };

  // `output` outlives the object.
  tPageFormat(tOutput& output, std::string const& title, uint64_t most = kMostLines);

  void take(tRecord const& record) override;
  void finish() override;

  // How many lines are not in the page.
  uint64_t getLeftOut() const { return count > mostLines ? count - mostLines : 0; }

 private:
  void appendLine(tRecord const& record);
  void appendPlace(tRecord const& record);
  void appendTimes(tRecord const& record);
  void appendNumber(int64_t number);

  tOutput& output;
  uint64_t mostLines;
  std::string line;  // as JSON
  uint64_t count = 0;
  std::optional<uint64_t> firstTime;
  bool hasDelta = false;
  bool isInTicks = true;
  tNameList components;
  tNameList files;
  tNameList threads;
};

}  // namespace oxdiagview
