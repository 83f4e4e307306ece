#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tOpenBlocks.h"
#include "oxdiagview/tOutput.h"

namespace oxdiagview {

// Writes a trace in the trace event format, for ui.perfetto.dev and chrome://tracing: blocks as
// slices of their threads, lines as instants. Times are microseconds since the first line; in a
// trace without times each line takes one.
//
// A block without an end lasts to the end of the block around it, or of the trace; one without a
// beginning lasts from that of the block around it, or from the first line.
class tPerfetto : public iRecordSink {
 public:
  // `output` outlives the object.
  explicit tPerfetto(tOutput& output);

  void take(tRecord const& record) override;
  void finish() override;

 private:
  void noteTime(tRecord& record);
  void noteThread(uint32_t thread);
  void takeBlockEnd(tRecord const& record);
  void putSlice(tOpenBlocks::tBlock const& block, uint32_t thread, char const* remark,
                std::optional<int32_t> code);
  void putInstant(tRecord const& record);
  void beginEvent(std::string_view name, char const* phase, uint32_t thread);
  void putMicroseconds(char const* member, uint64_t nanoseconds);
  void endEvent();

  tOutput& output;
  tOpenBlocks blocks;
  std::set<uint32_t> threads;
  std::optional<uint64_t> firstTime;
  uint64_t lastTime = 0;  // since the first, in nanoseconds
  bool hasEvents = false;
  std::string place;  // of the line
  std::string json;   // of the event
};

}  // namespace oxdiagview
