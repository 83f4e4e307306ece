#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace oxdiagview {

// What a line of a trace is.
enum class tKind {
  kLine,
  kBlockBegin,
  kBlockEnd,
  kAssertion,
  kStatus,   // one of the lines that a status wrote
  kDump,     // a row of a hex dump, also the first one, behind the text of a line
  kLegend,   // the names of the fields
  kForeign,  // without a prefix, among lines that have one
};

// One line of a trace as it was read. The texts lie in the reader's memory: they are valid until
// the sink that was given the record returns. A field that the line does not show is empty or none.
struct tRecord {
  uint64_t number = 0;   // of the line in its input, from 1; two lines that were mixed share one
  std::string_view raw;  // without its line end
  tKind kind = tKind::kLine;
  bool hasPrefix = false;  // the line was opened; without, it goes on with what a line began
  bool isCut = false;      // too long for the reader: the rest of the line is missing
  bool isEnded = true;     // false: the input ends within the line

  std::string_view component;
  std::string_view version;
  std::optional<uint32_t> sourceLine;
  std::string_view file;  // with its path if the trace shows it
  std::optional<uint32_t> thread;
  std::optional<uint64_t> stamp;  // ticks of the processor's counter
  std::optional<int64_t> delta;   // ticks since the line before; negative if that ended later
  std::optional<uint32_t> verbosity;

  // Nanoseconds on the clock of the counter. In a trace without stamps it is the sum of the deltas.
  std::optional<uint64_t> time;
  std::optional<int64_t> timeDelta;
  std::optional<uint64_t> firstTime;  // of the first line of the trace that has a time

  uint32_t depth = 0;           // of open blocks around the line
  std::string_view text;        // behind prefix and indentation
  std::string_view function;    // the name of a block that begins or ends
  std::string_view object;      // this= of a block that begins, with its 0x
  std::optional<int32_t> code;  // the status of a block's line, or the error code of a status
  std::string_view category;    // of an assertion: default, warning, or another
  std::string_view message;     // of an assertion, without its head
};

}  // namespace oxdiagview
