#include "oxdiagview/tTextView.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "options/utf8Text.h"
#include "oxdiagview/recordColor.h"
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
constexpr size_t kMostTextColumn = 120;
constexpr uint32_t kMostDepth = 60;  // levels that are shown; text stays on the screen
constexpr std::string_view kMicro = "µ";

std::string hexadecimal(uint32_t number) {
  char digits[16] = "0x";
  char* const end = std::to_chars(digits + 2, std::end(digits), number, 16).ptr;
  std::transform(digits + 2, end, digits + 2, [](char digit) {
    return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  });
  return std::string(digits, end);
}

// Characters, where bytes of UTF-8 that go on with one do not count.
size_t widthOf(std::string_view text) {
  unsigned int width = 0;
  for (char const character : text) width += (character & 0xC0) != 0x80 ? 1 : 0;
  return width;
}

}  // namespace

void tTextView::take(tRecord const& record) {
  columns.clear();
  if (record.hasPrefix) {
    textColumn = 0;
    putColumns(record);
  }
  if (!columns.empty()) {
    putColor(kFaint);
    output.put(columns);
    putColor(kNoColor);
  }
  putText(record);
}

void tTextView::putColumns(tRecord const& record) {
  putTimes(record);
  if (record.thread) putRight(hexadecimal(*record.thread), kThreadWidth);
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
  size_t const begin = columns.size();
  auto const putPart = [&](std::string_view part, char separator) {
    if (part.empty()) return;
    if (columns.size() != begin) columns += separator;
    appendForTerminal(columns, part);
  };
  putPart(record.component, ' ');
  putPart(record.version, ' ');
  putPart(record.file, ' ');
  char digits[16];
  if (record.sourceLine) {
    char const* const end = std::to_chars(digits, std::end(digits), *record.sourceLine).ptr;
    putPart(std::string_view(digits, static_cast<size_t>(end - digits)), ':');
  }
  if (columns.size() != begin) padPlace(begin);
}

void tTextView::padPlace(size_t begin) {
  size_t const width = widthOf(std::string_view(columns).substr(begin));
  placeWidth = std::max(placeWidth, std::min(width, kMostPlace));
  columns.append(placeWidth - std::min(width, placeWidth) + kGap, ' ');
  textColumn += std::max(placeWidth, width) + kGap;
}

// Of `text` no byte is beyond ASCII but in a span's unit.
void tTextView::putRight(std::string_view text, size_t width) {
  bool const hasMicro = text.size() > 2 && text[text.size() - 2] == kMicro.back();
  size_t const used = text.size() - (hasMicro ? kMicro.size() - 1 : 0);
  columns.append(width - std::min(used, width), ' ');
  columns += text;
  columns.append(kGap, ' ');
  textColumn += std::max(width, used) + kGap;
}

void tTextView::putText(tRecord const& record) {
  size_t const indentation = std::min(record.depth, kMostDepth) * kBlanksPerLevel;
  shown.assign(record.hasPrefix ? indentation : std::min(textColumn, kMostTextColumn), ' ');
  std::string_view const color = colorOf(record);
  if (isColored) shown += color;
  appendForTerminal(shown, record.text);
  output.put(shown);
  if (record.isCut) output.put(" ... (cut)");
  if (!color.empty()) putColor(kNoColor);
  output.put('\n');
}

void tTextView::putColor(std::string_view color) {
  if (isColored) output.put(color);
}

}  // namespace oxdiagview
