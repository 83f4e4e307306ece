#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tLargest.h"
#include "oxdiagview/tOpenBlocks.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Counts what is in a trace, and tells it at the end: lines, assertions by category, statuses by
// code, the slowest blocks, the longest gaps between lines.
class tSummary : public iRecordSink {
 public:
  // `output` outlives the summary. `rate` says where the times are from.
  tSummary(tOutput& output, std::string rate) : output(output), rate(std::move(rate)) {}

  void take(tRecord const& record) override;
  void finish() override;

 private:
  static constexpr size_t kShown = 10;         // of each list
  static constexpr size_t kMostNames = 10000;  // of a kind that are told apart

  struct tBlockTimes {
    uint64_t count = 0;
    uint64_t sum = 0;  // nanoseconds
    uint64_t most = 0;
    uint64_t mostAt = 0;  // the line at which the longest began
  };
  using tCounts = std::map<std::string, uint64_t>;

  void count(tCounts& counts, std::string_view name);
  void takeBlockEnd(tRecord const& record);
  void takeBlock(tOpenBlocks::tBlock const& block, tRecord const& record);
  void takeTime(tRecord const& record);
  void putCounts(char const* title, tCounts const& counts);
  void putSpan();
  void putStatuses();
  void putBlocks();
  void putGaps();
  void putLine(std::string const& text);

  tOutput& output;
  std::string const rate;
  uint64_t lines = 0;
  uint64_t opened = 0;
  uint64_t foreign = 0;
  uint64_t cut = 0;
  uint64_t unbegun = 0;
  uint64_t unended = 0;
  tCounts components;
  tCounts assertions;
  tCounts verbosities;
  std::map<int32_t, uint64_t> statuses;    // written in full
  std::map<int32_t, uint64_t> blockCodes;  // at ends of blocks, but 0
  std::set<uint32_t> threads;
  tOpenBlocks blocks;
  std::map<std::string, tBlockTimes> times;  // by name and place
  struct tGapEnd {
    uint64_t number = 0;
    std::string place;
  };
  tLargest<tGapEnd> gaps{kShown};  // the line behind each
  std::optional<uint64_t> firstTime;
  uint64_t lastTime = 0;
  uint64_t latestTime = 0;
};

}  // namespace oxdiagview
