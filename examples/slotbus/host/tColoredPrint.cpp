#include "slotbus/host/tColoredPrint.h"

#include <unistd.h>

#include <cstdlib>

#include "oxdiagview/recordColor.h"

using oxdiagview::tKind;
using oxdiagview::tRecord;

namespace {

// The reader judges a trace by its first line, and that of the demo may have no prefix.
constexpr std::string_view kUsualLine = "[slotbus--1--slotbus.cpp------] text\n";
constexpr uint64_t kNoRate = 0;

}  // namespace

tColoredPrint::tColoredPrint(std::FILE* file) : output(file), reader(*this, kNoRate) {
  reader.feed(kUsualLine);
  reader.flush();
}

tColoredPrint::~tColoredPrint() {
  print(rest);
}

void tColoredPrint::put(std::string_view text) {
  rest += text;
  size_t begin = 0;
  for (size_t end; (end = rest.find('\n', begin)) != std::string::npos; begin = end + 1) {
    printLine(std::string_view(rest).substr(begin, end + 1 - begin));
  }
  rest.erase(0, begin);
}

// What the reader does not take for text of the line would be lost; such a line is printed as it
// is.
void tColoredPrint::printLine(std::string_view line) {
  raw.clear();
  colored.clear();
  reader.feed(line);
  reader.flush();
  bool const isWhole = raw == line.substr(0, line.size() - 1);
  print(isWhole ? colored + "\n" : line);
}

void tColoredPrint::take(tRecord const& record) {
  raw += record.raw;
  size_t const length = record.text.size();
  std::string_view const text = record.raw.substr(record.raw.size() - length);
  appendColored(oxdiagview::kFaint, record.raw.substr(0, record.raw.size() - length));
  appendColored(record.kind == tKind::kForeign ? "" : oxdiagview::colorOf(record), text);
}

void tColoredPrint::appendColored(std::string_view color, std::string_view text) {
  if (text.empty()) return;
  colored += color;
  colored += text;
  if (!color.empty()) colored += oxdiagview::kNoColor;
}

bool wantsColors() {
  char const* const refusal = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refusal == nullptr || *refusal == '\0');
}
