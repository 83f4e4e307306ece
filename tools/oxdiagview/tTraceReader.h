#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "oxdiagview/iRecordSink.h"
#include "oxdiagview/tLayoutTable.h"
#include "oxdiagview/tRecord.h"

namespace oxdiagview {

// Makes records of the bytes of a trace, in whatever portions they arrive.
//
// Each line is recognised by itself, and where it may be read in several ways, as the lines before
// it. The first 64 KiB are looked at before the first record goes out, so that those lines are not
// read worse than later ones; flush() ends that. Memory is bounded: of a line of more than 64 KiB
// the beginning is kept.
//
// Line ends are LF, with CRs before or behind it as files and the serial port have them.
class tTraceReader {
 public:
  static constexpr size_t kMostLine = size_t{64} << 10;
  static constexpr size_t kSample = size_t{64} << 10;

  // `sink` outlives the reader. `ticksPerSecond` is the rate of the counter; 0 when it is not
  // known, and then no record has a time.
  tTraceReader(iRecordSink& sink, uint64_t ticksPerSecond);

  void feed(std::string_view bytes);

  // Hands out what is complete, of an input that may go on later.
  void flush();

  // Hands out all, and tells the sink that there is no more.
  void finish();

  // Hands out an unfinished line, and counts lines from 1 again: the input was replaced.
  void restart();

 private:
  enum class tManner {
    kBracketed,  // lines have a prefix with fields
    kClosed,     // "] " only, of a width of 1
    kBlank,      // blanks, or nothing
  };

  void endInput();
  void beginReading();
  void noteSample();
  template <class tFunction>
  void forEachSampled(tFunction const& function);
  bool findPrefix(std::string_view line, tPrefixText& prefix) const;
  void noteLine(std::string_view line);
  void consume(std::string_view bytes);
  void keepTail(std::string_view bytes);
  void endTail();

  void readLine(std::string_view raw, bool isCut, bool isEnded);
  void readPieces(std::string_view line, bool isCut, bool isEnded);
  void readOpened(std::string_view line, tPrefixText const& prefix);
  void readUnopened(std::string_view line);
  void readText(std::string_view text);
  bool readStatus(std::string_view line);
  bool readLegend(std::string_view line);
  void readPlain(std::string_view line);

  bool isPrefix(std::string_view line, tPrefixText& prefix) const;
  size_t findInnerPrefix(std::string_view line, size_t from, size_t length) const;
  bool isInnerPrefix(std::string_view text, size_t length) const;
  void setFields(tPrefixText& prefix);
  void setField(tField field, std::string_view part);
  void setTimes();
  void setTimeDelta(int64_t delta);
  uint64_t sumTime(int64_t timeDelta);
  uint64_t toNanoseconds(uint64_t ticks) const;
  void setDepth(uint32_t blanks);
  void hand();

  iRecordSink& sink;
  uint64_t const ticksPerSecond;
  tLayoutTable layouts;
  tRecord record;
  std::string sample;
  std::string tail;  // the beginning of a line whose end has not arrived

  bool isSampling = true;
  bool isTailCut = false;
  bool isInStatus = false;
  bool isIndented = true;
  bool isDecorated = false;  // something else puts text in front of each line
  bool acceptsUnsure = false;
  tManner manner = tManner::kBracketed;
  size_t blankPrefix = 0;
  uint64_t number = 0;
  uint64_t noteUntil = 0;  // the lines up to this one are in the table
  std::optional<uint64_t> firstTime;
  uint64_t summedTime = 0;
  bool hasSum = false;
  uint32_t level = 0;        // of open blocks, by their lines
  uint32_t beginBlanks = 0;  // of the line before, if a block began there
  bool isBehindBegin = false;

  // Of the sample.
  struct tCounts {
    uint64_t lines = 0;
    uint64_t sure = 0;
    uint64_t unsure = 0;
    uint64_t decorated = 0;
    uint64_t closed = 0;
    size_t leastBlanks = ~size_t{0};
  };
  tCounts counts;
};

}  // namespace oxdiagview
