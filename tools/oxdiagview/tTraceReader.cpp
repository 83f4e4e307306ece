#include "oxdiagview/tTraceReader.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>

#include "oxdiagview/textForms.h"

namespace oxdiagview {
namespace {

constexpr uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr uint64_t kLongestSpan = ~uint64_t{0} >> 1;
constexpr size_t kMostDecoration = 200;  // characters that a capturing program puts before a line
constexpr size_t kMostTries = 64;        // brackets in front of an end that are looked at
constexpr std::string_view kClosedPrefix = "] ";
constexpr uint32_t kBlanksPerLevel = 2;

constexpr std::string_view kLegendNames[] = {"compname", "compver",   "linenumber", "filename",
                                             "threadid", "timestamp", "timedelta",  "verbosity"};

std::string_view withoutLineEnd(std::string_view line) {
  while (!line.empty() && line.front() == '\r') line.remove_prefix(1);
  while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

size_t countBlanks(std::string_view text) {
  return std::min(text.find_first_not_of(' '), text.size());
}

// Nothing if the number has more bits.
template <class tNumber>
std::optional<tNumber> numberOf(std::string_view digits, int radix = 10) {
  tNumber number = 0;
  char const* const end = digits.data() + digits.size();
  auto const read = std::from_chars(digits.data(), end, number, radix);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

tFieldSet fieldsOfLegend(std::string_view names) {
  tFieldSet fields = 0;
  while (!names.empty()) {
    size_t const end = std::min(names.find("--"), names.size());
    std::string_view const name = names.substr(0, end);
    if (name == "filepath") fields |= 1u << kFile;
    for (uint32_t field = 0; field < kFieldCount; ++field) {
      if (name == kLegendNames[field]) fields |= 1u << field;
    }
    names.remove_prefix(std::min(end + 2, names.size()));
  }
  return fields;
}

}  // namespace

tTraceReader::tTraceReader(iRecordSink& sink, uint64_t ticksPerSecond)
    : sink(sink), ticksPerSecond(ticksPerSecond) {
}

void tTraceReader::feed(std::string_view bytes) {
  if (!isSampling) return consume(bytes);
  size_t const taken = std::min(bytes.size(), kSample - sample.size());
  sample.append(bytes.substr(0, taken));
  if (sample.size() < kSample) return;
  beginReading();
  consume(bytes.substr(taken));
}

void tTraceReader::flush() {
  if (isSampling && !sample.empty()) beginReading();
}

void tTraceReader::finish() {
  endInput();
  sink.finish();
}

void tTraceReader::restart() {
  endInput();
  isTailCut = isInStatus = isBehindBegin = false;
  number = noteUntil = 0;
  level = 0;
}

void tTraceReader::endInput() {
  flush();
  if (tail.empty()) return;
  ++number;
  readLine(tail, isTailCut, false);
  tail.clear();
}

void tTraceReader::beginReading() {
  isSampling = false;
  noteSample();
  std::string const bytes = std::move(sample);
  sample = std::string();
  consume(bytes);
}

void tTraceReader::noteSample() {
  forEachSampled([this](std::string_view line) {
    tPrefixText prefix;
    if (findPrefix(line, prefix)) layouts.noteLength(prefix);
  });
  forEachSampled([this](std::string_view line) { noteLine(line); });
  layouts.findUsual();
  bool const isMostly = counts.unsure * 2 >= counts.lines && counts.sure * 2 < counts.lines;
  acceptsUnsure = counts.unsure != 0 && isMostly;
  isDecorated = counts.decorated * 2 > counts.sure && counts.decorated > 1;
  if (counts.sure != 0 || acceptsUnsure) return;
  bool const isClosed = counts.closed != 0 && counts.closed * 2 >= counts.lines;
  manner = isClosed ? tManner::kClosed : tManner::kBlank;
  blankPrefix = counts.leastBlanks == ~size_t{0} ? 0 : counts.leastBlanks;
}

// A line that is not whole yet counts if there is no other.
template <class tFunction>
void tTraceReader::forEachSampled(tFunction const& function) {
  std::string_view rest = sample;
  while (!rest.empty()) {
    size_t const end = std::min(rest.find('\n'), rest.size());
    bool const isWhole = end != rest.size();
    if (isWhole || rest.size() == sample.size()) function(withoutLineEnd(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

bool tTraceReader::findPrefix(std::string_view line, tPrefixText& prefix) const {
  if (prefix.read(line)) return true;
  size_t const place = findInnerPrefix(line, 0, 0);
  return place != line.npos && prefix.read(line.substr(place));
}

void tTraceReader::noteLine(std::string_view line) {
  ++noteUntil;
  if (line.empty() || beginsStatus(line) || continuesStatus(line)) return;
  if (readLegend(line)) return;
  ++counts.lines;
  tPrefixText prefix;
  bool const isThere = findPrefix(line, prefix);
  if (isThere) layouts.note(prefix);
  counts.sure += isThere && prefix.isSure() ? 1 : 0;
  counts.unsure += isThere && !prefix.isSure() ? 1 : 0;
  counts.decorated += isThere && line[0] != '[' ? 1 : 0;
  counts.closed += line.starts_with(kClosedPrefix) || line == "]" ? 1 : 0;
  bool const isBlank = !isThere && !hasDumpRow(line);
  if (isBlank) counts.leastBlanks = std::min(counts.leastBlanks, countBlanks(line));
}

void tTraceReader::consume(std::string_view bytes) {
  while (!bytes.empty()) {
    void const* const found = std::memchr(bytes.data(), '\n', bytes.size());
    if (found == nullptr) return keepTail(bytes);
    size_t const end = static_cast<size_t>(static_cast<char const*>(found) - bytes.data());
    if (tail.empty()) {
      ++number;
      readLine(bytes.substr(0, std::min(end, kMostLine)), end > kMostLine, true);
    } else {
      keepTail(bytes.substr(0, end));
      endTail();
    }
    bytes.remove_prefix(end + 1);
  }
}

void tTraceReader::keepTail(std::string_view bytes) {
  size_t const room = kMostLine - tail.size();
  isTailCut = isTailCut || bytes.size() > room;
  tail.append(bytes.substr(0, room));
}

void tTraceReader::endTail() {
  ++number;
  readLine(tail, isTailCut, true);
  tail.clear();
  isTailCut = false;
}

void tTraceReader::readLine(std::string_view raw, bool isCut, bool isEnded) {
  std::string_view const line = withoutLineEnd(raw);
  // The CR of the serial port's last line stands alone.
  if (line.empty() && !isEnded) return;
  readPieces(line, isCut, isEnded);
}

// A line that another one began within is two, and what neither has opened is a third.
void tTraceReader::readPieces(std::string_view line, bool isCut, bool isEnded) {
  while (true) {
    tPrefixText prefix;
    bool const isOpened = isPrefix(line, prefix);
    size_t const from = isOpened ? prefix.getLength() : 0;
    size_t const inner = manner == tManner::kBracketed
                             ? findInnerPrefix(line, from, isOpened ? prefix.getLength() : 0)
                             : line.npos;
    bool const isLead = !isOpened && isDecorated && inner != line.npos;
    if (!isLead) {
      record = tRecord();
      record.number = number;
      record.isCut = inner == line.npos && isCut;
      record.isEnded = inner != line.npos || isEnded;
      record.raw = line.substr(0, inner);
      isOpened ? readOpened(record.raw, prefix) : readUnopened(record.raw);
      hand();
    }
    if (inner == line.npos) return;
    line.remove_prefix(inner);
  }
}

bool tTraceReader::isPrefix(std::string_view line, tPrefixText& prefix) const {
  return prefix.read(line) && (prefix.isSure() || acceptsUnsure);
}

// `length` is that of the outer prefix, or 0 for a line that has none. Only a few of the brackets
// in front of one end are looked at, so that a line of nothing but brackets takes no time to speak
// of.
size_t tTraceReader::findInnerPrefix(std::string_view line, size_t from, size_t length) const {
  size_t const last = length == 0 && isDecorated ? from + kMostDecoration : line.size();
  size_t end = from;
  size_t tries = 0;
  size_t place = line.find('[', from);
  for (; place != line.npos && place < last; place = line.find('[', place + 1)) {
    if (place >= end) {
      end = findPrefixEnd(line, place, line.size());
      tries = 0;
    }
    if (end == line.npos) break;
    if (place == 0 || end - place >= tPrefixText::kMostLength || ++tries > kMostTries) continue;
    if (isInnerPrefix(line.substr(place), length)) return place;
  }
  return line.npos;
}

bool tTraceReader::isInnerPrefix(std::string_view text, size_t length) const {
  tPrefixText prefix;
  if (!prefix.read(text) || !prefix.isSure() || prefix.getCount() < 2) return false;
  return length == 0 || prefix.getLength() == length || layouts.knows(prefix);
}

void tTraceReader::readOpened(std::string_view line, tPrefixText const& prefix) {
  isInStatus = false;
  record.hasPrefix = true;
  tPrefixText parts = prefix;
  if (number > noteUntil) layouts.noteLength(parts);
  if (number > noteUntil) layouts.note(parts);
  setFields(parts);
  setTimes();
  readText(line.substr(prefix.getLength()));
}

void tTraceReader::setFields(tPrefixText& prefix) {
  bool const isCut = layouts.isCut(prefix);
  tFieldSet fields = layouts.find(prefix);
  while (fields == 0 && prefix.joinTexts()) fields = layouts.find(prefix);
  size_t index = 0;
  for (; fields != 0; fields &= fields - 1, ++index) {
    tField const field = static_cast<tField>(std::countr_zero(fields));
    bool const isText = field == kComponent || field == kFile;
    bool const isDoubtful = isCut && index + 1 == prefix.getCount() && !isText;
    if (!isDoubtful) setField(field, prefix.getPart(index));
  }
}

void tTraceReader::setField(tField field, std::string_view part) {
  if (field == kComponent) record.component = part;
  if (field == kVersion) record.version = part;
  if (field == kSourceLine) record.sourceLine = numberOf<uint32_t>(part);
  if (field == kFile) record.file = part;
  if (field == kThread) record.thread = numberOf<uint32_t>(part.substr(2), 16);
  if (field == kStamp) record.stamp = numberOf<uint64_t>(part);
  if (field == kVerbosity) record.verbosity = numberOf<uint32_t>(part);
  if (field != kDelta) return;
  auto const delta = numberOf<uint64_t>(part);
  if (delta) record.delta = static_cast<int64_t>(*delta);
}

void tTraceReader::setTimes() {
  if (ticksPerSecond == 0) return;
  if (record.delta) setTimeDelta(*record.delta);
  if (record.stamp) {
    record.time = toNanoseconds(*record.stamp);
  } else if (record.delta) {
    record.time = sumTime(*record.timeDelta);
  }
  if (!firstTime) firstTime = record.time;
  record.firstTime = firstTime;
}

void tTraceReader::setTimeDelta(int64_t delta) {
  uint64_t const ticks = static_cast<uint64_t>(delta);
  uint64_t const magnitude = toNanoseconds(delta < 0 ? 0 - ticks : ticks);
  int64_t const span = static_cast<int64_t>(std::min(magnitude, kLongestSpan));
  record.timeDelta = delta < 0 ? -span : span;
}

// The delta of the very first line is the counter itself, which is no time between lines.
uint64_t tTraceReader::sumTime(int64_t timeDelta) {
  if (hasSum && timeDelta > 0) summedTime += static_cast<uint64_t>(timeDelta);
  hasSum = true;
  return summedTime;
}

// In two steps, because the product has more than 64 bits.
uint64_t tTraceReader::toNanoseconds(uint64_t ticks) const {
  return ticks / ticksPerSecond * kNanosecondsPerSecond +
         ticks % ticksPerSecond * kNanosecondsPerSecond / ticksPerSecond;
}

void tTraceReader::readUnopened(std::string_view line) {
  if (readStatus(line)) return;
  if (manner == tManner::kClosed && (line.starts_with(kClosedPrefix) || line == "]")) {
    record.hasPrefix = true;
    return readText(line.substr(std::min(kClosedPrefix.size(), line.size())));
  }
  bool const isLegend = readLegend(line);
  bool const isRow = hasDumpRow(line);
  if (manner == tManner::kBlank && !isRow && !isLegend) return readPlain(line);
  record.kind = isLegend ? tKind::kLegend : isRow ? tKind::kDump : tKind::kForeign;
  record.text = line;
}

bool tTraceReader::readLegend(std::string_view line) {
  auto const names = legendOf(line);
  if (names) layouts.setLegend(fieldsOfLegend(*names));
  return names.has_value();
}

bool tTraceReader::readStatus(std::string_view line) {
  isInStatus = beginsStatus(line) || (isInStatus && continuesStatus(line));
  if (!isInStatus) return false;
  record.kind = tKind::kStatus;
  record.text = line;
  record.code = errorCodeOf(line);
  return true;
}

void tTraceReader::readPlain(std::string_view line) {
  record.hasPrefix = blankPrefix != 0 && countBlanks(line) >= blankPrefix;
  readText(line.substr(record.hasPrefix ? blankPrefix : 0));
}

void tTraceReader::readText(std::string_view text) {
  size_t const blanks = countBlanks(text);
  record.text = text.substr(blanks);
  readTextForm(record);
  if (record.kind == tKind::kLegend) readLegend(record.text);
  setDepth(static_cast<uint32_t>(blanks));
}

// With the indentation switched off the depth is counted. Whether it is shows in the line behind
// one at which a block begins.
void tTraceReader::setDepth(uint32_t blanks) {
  bool const isEnd = record.kind == tKind::kBlockEnd;
  if (isEnd && level != 0) --level;
  if (isBehindBegin && !isEnd) isIndented = blanks >= beginBlanks + kBlanksPerLevel;
  if (blanks >= kBlanksPerLevel) isIndented = true;
  record.depth = isIndented ? blanks / kBlanksPerLevel : level;
  isBehindBegin = record.kind == tKind::kBlockBegin;
  beginBlanks = blanks;
  level = record.depth + (isBehindBegin ? 1 : 0);
}

void tTraceReader::hand() {
  sink.take(record);
}

}  // namespace oxdiagview
