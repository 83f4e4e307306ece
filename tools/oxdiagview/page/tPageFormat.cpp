#include "oxdiagview/page/tPageFormat.h"

#include "oxdiagview/page/pageParts.h"
#include "oxdiagview/page/scriptText.h"

namespace oxdiagview {

namespace {

constexpr char kNoNumber[] = ",null";

// The page knows the kinds by their numbers (traceModel.js).
static_assert(static_cast<int>(tKind::kLine) == 0 && static_cast<int>(tKind::kBlockBegin) == 1 &&
              static_cast<int>(tKind::kBlockEnd) == 2 && static_cast<int>(tKind::kAssertion) == 3 &&
              static_cast<int>(tKind::kStatus) == 4 && static_cast<int>(tKind::kDump) == 5 &&
              static_cast<int>(tKind::kLegend) == 6 && static_cast<int>(tKind::kForeign) == 7);

int markOf(tRecord const& record) {
  if (record.kind == tKind::kAssertion) {
    return record.category == "warning" ? tPageFormat::kWarning : tPageFormat::kFailure;
  }
  if (record.kind != tKind::kStatus || record.code.value_or(0) == 0) return tPageFormat::kNone;
  return *record.code < 0 ? tPageFormat::kFailure : tPageFormat::kWarning;
}

unsigned int flagsOf(tRecord const& record) {
  return (record.hasPrefix ? tPageFormat::kPrefixed : 0U) |
         (record.isCut ? tPageFormat::kCut : 0U) | (record.isEnded ? 0U : tPageFormat::kUnended);
}

std::string threadName(uint32_t thread) {
  char text[16];
  std::snprintf(text, sizeof(text), "0x%X", static_cast<unsigned int>(thread));
  return text;
}

}  // namespace

tPageFormat::tPageFormat(tOutput& file, std::string const& title, uint64_t most)
    : output(file), mostLines(most) {
  for (std::string_view const piece : getPageBeforeTrace()) output.put(piece);
  output.put("{\"title\":");
  appendScriptText(line, title);
  output.put(line);
  output.put(",\"lines\":[");
}

void tPageFormat::take(tRecord const& record) {
  ++count;
  if (count > mostLines) return;
  line = count == 1 ? "\n[" : ",\n[";
  appendLine(record);
  line += ']';
  output.put(line);
}

void tPageFormat::finish() {
  output.put("\n],\n\"components\":" + components.getJson());
  output.put(",\n\"files\":" + files.getJson());
  output.put(",\n\"threads\":" + threads.getJson());
  output.put(",\n\"leftOut\":" + std::to_string(getLeftOut()));
  output.put(std::string(",\n\"isInTicks\":") + (isInTicks ? "true" : "false") + "}");
  for (std::string_view const piece : getPageBehindTrace()) output.put(piece);
}

void tPageFormat::appendLine(tRecord const& record) {
  line += std::to_string(record.number);
  appendNumber(static_cast<int>(record.kind));
  appendNumber(markOf(record));
  appendNumber(record.depth);
  appendPlace(record);
  appendTimes(record);
  appendNumber(flagsOf(record));
  line += ',';
  appendScriptText(line, record.text);
  if (record.function.empty()) return;
  line += ',';
  appendScriptText(line, record.function);
}

void tPageFormat::appendPlace(tRecord const& record) {
  appendNumber(components.numberOf(record.component));
  appendNumber(files.numberOf(record.file));
  appendNumber(record.sourceLine ? int64_t{*record.sourceLine} : -1);
  appendNumber(record.verbosity ? int64_t{*record.verbosity} : -1);
  appendNumber(record.thread ? threads.numberOf(threadName(*record.thread)) : -1);
}

// The first delta counts from a line that is not in the page, or from the start of the machine.
void tPageFormat::appendTimes(tRecord const& record) {
  auto const time = record.time ? record.time : record.stamp;
  auto const delta = record.timeDelta ? record.timeDelta : record.delta;
  if (record.time || record.timeDelta) isInTicks = false;
  if (time && !firstTime) firstTime = time;
  if (time) {
    appendNumber(static_cast<int64_t>(*time - *firstTime));
  } else {
    line += kNoNumber;
  }
  if (delta && hasDelta) {
    appendNumber(*delta);
  } else {
    line += kNoNumber;
  }
  hasDelta = hasDelta || delta.has_value();
}

void tPageFormat::appendNumber(int64_t number) {
  line += ',';
  line += std::to_string(number);
}

}  // namespace oxdiagview
