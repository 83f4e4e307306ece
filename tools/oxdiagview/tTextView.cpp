#include "oxdiagview/tTextView.h"

#include <algorithm>
#include <cstdio>

#include "oxdiagview/timeText.h"

namespace oxdiagview {
namespace {

constexpr size_t kClockWidth = 11;
constexpr size_t kSpanWidth = 10;
constexpr size_t kThreadWidth = 7;
constexpr size_t kVerbosityWidth = 4;
constexpr size_t kMostPlace = 44;
constexpr size_t kGap = 2;  // blanks between columns
constexpr size_t kBlanksPerLevel = 2;
constexpr uint32_t kMostDepth = 60;  // levels that are shown; text stays on the screen
constexpr uint32_t kFailure = 140;   // verbosities from here to
constexpr uint32_t kResult = 150;    // here are of failures

constexpr std::string_view kTab = "    ";
constexpr std::string_view kPlain = "";
constexpr std::string_view kEnd = "\x1b[0m";
constexpr std::string_view kFaint = "\x1b[90m";
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kBoldRed = "\x1b[1;31m";
constexpr std::string_view kYellow = "\x1b[33m";
constexpr std::string_view kCyan = "\x1b[36m";

bool isError(std::optional<int32_t> code) {
  return code && *code < 0;
}

std::string_view colorOf(tRecord const& record) {
  switch (record.kind) {
    case tKind::kAssertion:
      return record.category == "warning" ? kYellow : kBoldRed;
    case tKind::kBlockBegin:
    case tKind::kBlockEnd:
      return isError(record.code) ? kRed : kCyan;
    case tKind::kStatus:
      return isError(record.code) ? kRed : kFaint;
    case tKind::kDump:
    case tKind::kForeign:
    case tKind::kLegend:
      return kFaint;
    case tKind::kLine:
      break;
  }
  bool const isFailure = record.verbosity >= kFailure && record.verbosity < kResult;
  return isFailure ? kRed : kPlain;
}

bool isControl(char character) {
  unsigned char const byte = static_cast<unsigned char>(character);
  return byte < ' ' || byte == 0x7F;
}

// Characters, where bytes of UTF-8 that go on with one do not count.
size_t widthOf(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0) != 0x80;
  }));
}

}  // namespace

void tTextView::take(tRecord const& record) {
  columns.clear();
  if (record.hasPrefix) putColumns(record);
  if (!columns.empty()) {
    putColor(kFaint);
    output.put(columns);
    putColor(kEnd);
  }
  if (record.hasPrefix) textColumn = widthOf(columns);
  putText(record);
}

void tTextView::putColumns(tRecord const& record) {
  putTimes(record);
  char thread[24];
  if (record.thread) std::snprintf(thread, sizeof(thread), "0x%X", *record.thread);
  if (record.thread) putRight(thread, kThreadWidth);
  if (record.verbosity) putRight(std::to_string(*record.verbosity), kVerbosityWidth);
  putPlace(record);
}

// Where the trace has no deltas, the times of the lines tell them.
void tTextView::putTimes(tRecord const& record) {
  if (!record.time) return;
  if (!firstTime) firstTime = record.time;
  putRight(clockText(static_cast<int64_t>(*record.time - *firstTime)), kClockWidth);
  auto delta = record.timeDelta;
  if (!delta && lastTime) delta = static_cast<int64_t>(*record.time - *lastTime);
  bool const isFirst = !lastTime;
  lastTime = record.time;
  std::string const text = delta && !isFirst ? spanText(*delta) : std::string();
  putRight(text.empty() || text[0] == '-' ? text : "+" + text, kSpanWidth);
}

void tTextView::putPlace(tRecord const& record) {
  std::string place(record.component);
  if (!record.version.empty()) place += (place.empty() ? "" : " ") + std::string(record.version);
  if (!record.file.empty()) place += (place.empty() ? "" : " ") + std::string(record.file);
  if (record.sourceLine) place += (place.empty() ? "" : ":") + std::to_string(*record.sourceLine);
  if (place.empty()) return;
  std::replace_if(place.begin(), place.end(), isControl, '?');
  placeWidth = std::max(placeWidth, std::min(widthOf(place), kMostPlace));
  columns += place;
  columns.append(placeWidth - std::min(widthOf(place), placeWidth) + kGap, ' ');
}

void tTextView::putRight(std::string_view text, size_t width) {
  columns.append(width - std::min(widthOf(text), width), ' ');
  columns += text;
  columns.append(kGap, ' ');
}

void tTextView::putText(tRecord const& record) {
  size_t const indentation = std::min(record.depth, kMostDepth) * kBlanksPerLevel;
  shown.assign(record.hasPrefix ? indentation : textColumn, ' ');
  output.put(shown);
  std::string_view const color = colorOf(record);
  putColor(color);
  putSafely(record.text);
  if (record.isCut) output.put(" ... (cut)");
  if (!color.empty()) putColor(kEnd);
  output.put('\n');
}

// A tab is of use only at the beginning of a line, where the text never is.
void tTextView::putSafely(std::string_view text) {
  bool const isSafe = std::none_of(text.begin(), text.end(), isControl);
  if (isSafe) return output.put(text);
  for (char const character : text) {
    if (character == '\t') output.put(kTab);
    if (character != '\t') output.put(isControl(character) ? '?' : character);
  }
}

void tTextView::putColor(std::string_view color) {
  if (isColored) output.put(color);
}

}  // namespace oxdiagview
