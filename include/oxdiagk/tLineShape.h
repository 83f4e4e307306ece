#pragma once

#include "compiler/types.h"
#include "oxdiagk/tTraceFilter.h"

// The switches of a trace stream, told once. FIELD is a field of the prefix, SHAPE something else
// that shapes a line, MUTEX the line mutex. The order is that of the fields in a prefix, and of the
// words in an inquired text. Of each:
//   - its name, as in enableTimeStamp() and timeStampIsEnabled();
//   - its place among the stream's members;
//   - whether it is on at the start;
//   - its option word without "--", which is its name in the legend;
//   - the field of filter terms behind the option.
// clang-format off
#define OXDIAG_TRACE_SWITCHES(FIELD, SHAPE, MUTEX)                                               \
  FIELD(ComponentName, componentName, 0, 1, compname, tTraceFilter::kComponentName)              \
  FIELD(ComponentVersion, componentVersion, 1, 0, compver, tTraceFilter::kComponentVersion)      \
  FIELD(LineNumber, lineNumber, 2, 1, linenumber, tTraceFilter::kLineNumber)                     \
  FIELD(FileName, fileName, 3, 1, filename, tTraceFilter::kFileName)                             \
  SHAPE(FilePath, filePath, 4, 0, filepath, tTraceFilter::kNoField)                              \
  FIELD(ThreadId, threadId, 8, 0, threadid, tTraceFilter::kThreadId)                             \
  FIELD(TimeStamp, timeStamp, 5, 0, timestamp, tTraceFilter::kNoField)                           \
  FIELD(TimeDelta, timeDelta, 6, 0, timedelta, tTraceFilter::kNoField)                           \
  FIELD(Verbosity, verbosity, 7, 0, verbosity, tTraceFilter::kVerbosity)                         \
  SHAPE(Indenting, indenting, 10, 1, indent, tTraceFilter::kNoField)                             \
  SHAPE(Truncation, truncation, 11, 1, truncation, tTraceFilter::kNoField)                       \
  MUTEX(Mutex, mutex, 9, 0, mutex, tTraceFilter::kNoField)
// clang-format on

// An entry that is left out.
#define OXDIAG_TRACE_NO_SWITCH(Name, name, place, atStart, word, field)

#define OXDIAG_TRACE_PLACE(Name, name, place, atStart, word, field) k##Name = (place),
#define OXDIAG_TRACE_BIT(Name, name, place, atStart, word, field) | 1ull << (place)
#define OXDIAG_TRACE_BIT_AT_START(Name, name, place, atStart, word, field) \
  | static_cast<u64>(atStart) << (place)

namespace nOXDIAG100 {

// What a line of a stream looks like, and whether it is written at all: the stream's switches and
// the width of its prefixes in one word, so that a line sees all of them as they are at one moment.
class tLineShape {
 public:
  // The switches by their place; the master switch comes behind them.
  enum tSwitch : u32 {
    kSwitchCount = 12,
    kEnabled = kSwitchCount,
    OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_PLACE, OXDIAG_TRACE_PLACE, OXDIAG_TRACE_PLACE)
  };

  static constexpr u32 kWidthAtStart = 50;

  explicit constexpr tLineShape(u64 word) : word(word) {}

  // As a stream is built: enabled, with the switches as the list says.
  static constexpr tLineShape atStart() {
    return tLineShape(bitOf(kEnabled) | kSwitchesAtStart |
                      static_cast<u64>(kWidthAtStart) << kWidthShift);
  }

  constexpr u64 getWord() const { return word; }
  constexpr bool isOn(tSwitch which) const { return (word & bitOf(which)) != 0; }
  constexpr u32 getWidth() const { return static_cast<u32>(word >> kWidthShift); }

  // With one of them as given and the rest as it is.
  constexpr tLineShape with(tSwitch which, bool isOn) const {
    return tLineShape(isOn ? word | bitOf(which) : word & ~bitOf(which));
  }
  constexpr tLineShape withWidth(u32 width) const {
    return tLineShape((word & kLowHalf) | static_cast<u64>(width) << kWidthShift);
  }

  // Whether a field is shown; without any, a prefix is blank.
  constexpr bool hasFields() const { return (word & kFields) != 0; }

  // Whether the prefix is what a tTraceSite has as text: component, line and file, cut to the
  // width.
  constexpr bool isStandard() const { return (word & kPrefixBits) == kStandardBits; }

  // Whether a line needs the counter at its beginning.
  constexpr bool showsTime() const { return (word & (bitOf(kTimeStamp) | bitOf(kTimeDelta))) != 0; }

  // Whether a line that is not shown leaves nothing behind but the time of its end.
  constexpr bool isHiddenQuietly() const {
    return (word & (bitOf(kMutex) | bitOf(kTimeDelta))) == 0;
  }

 private:
  static constexpr u32 kWidthShift = 32;
  static constexpr u64 kLowHalf = 0xFFFFFFFF;

  static constexpr u64 bitOf(tSwitch which) { return 1ull << which; }

  static constexpr u64 kFields =
      0 OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_BIT, OXDIAG_TRACE_NO_SWITCH, OXDIAG_TRACE_NO_SWITCH);
  static constexpr u64 kSwitches =
      0 OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_BIT, OXDIAG_TRACE_BIT, OXDIAG_TRACE_BIT);
  static constexpr u64 kSwitchesAtStart = 0 OXDIAG_TRACE_SWITCHES(
      OXDIAG_TRACE_BIT_AT_START, OXDIAG_TRACE_BIT_AT_START, OXDIAG_TRACE_BIT_AT_START);
  static_assert(kSwitches == (1ull << kSwitchCount) - 1, "each switch has a place of its own");

  static constexpr u64 kPrefixBits = kFields | 1ull << kFilePath | 1ull << kTruncation;
  static constexpr u64 kStandardBits =
      1ull << kComponentName | 1ull << kLineNumber | 1ull << kFileName | 1ull << kTruncation;

  u64 word;
};

}  // namespace nOXDIAG100

#undef OXDIAG_TRACE_BIT_AT_START
#undef OXDIAG_TRACE_BIT
#undef OXDIAG_TRACE_PLACE
