#include "oxdiagview/tJsonLines.h"

#include <charconv>
#include <iterator>

#include "oxdiagview/jsonText.h"

namespace oxdiagview {
namespace {

// Of the data model.
constexpr int64_t kDebug = 5;
constexpr int64_t kInfo = 9;
constexpr int64_t kWarn = 13;
constexpr int64_t kError = 17;

// As docs/tracing.md recommends verbosities.
constexpr uint32_t kProgress = 100;
constexpr uint32_t kFailure = 140;
constexpr uint32_t kResult = 150;

// None for what says nothing about it.
std::optional<int64_t> severityOf(tRecord const& record) {
  bool const isWarning = record.category == "warning";
  if (record.kind == tKind::kAssertion) return isWarning ? kWarn : kError;
  if (record.code && *record.code < 0) return kError;
  if (!record.verbosity) return std::nullopt;
  if (*record.verbosity < kProgress) return kDebug;
  bool const isFailure = *record.verbosity >= kFailure && *record.verbosity < kResult;
  return isFailure ? kError : kInfo;
}

char const* nameOf(tKind kind) {
  switch (kind) {
    case tKind::kLine:
      return "line";
    case tKind::kBlockBegin:
      return "block.begin";
    case tKind::kBlockEnd:
      return "block.end";
    case tKind::kAssertion:
      return "assertion";
    case tKind::kStatus:
      return "status";
    case tKind::kDump:
      return "dump";
    case tKind::kLegend:
      return "legend";
    case tKind::kForeign:
      break;
  }
  return "foreign";
}

}  // namespace

void tJsonLines::take(tRecord const& record) {
  json = "{";
  putSeverity(record);
  putText("Body", record.text);
  putScope(record);
  putAttributes(record);
  json += "}\n";
  output.put(json);
}

void tJsonLines::putSeverity(tRecord const& record) {
  auto const severity = severityOf(record);
  if (severity) putNumber("SeverityNumber", *severity);
  if (record.verbosity) putText("SeverityText", std::to_string(*record.verbosity));
}

void tJsonLines::putScope(tRecord const& record) {
  if (record.component.empty()) return;
  putMember("InstrumentationScope");
  json += '{';
  putText("Name", record.component);
  if (!record.version.empty()) putText("Version", record.version);
  json += '}';
}

void tJsonLines::putAttributes(tRecord const& record) {
  putMember("Attributes");
  json += '{';
  putNumber("oxdiag.line", static_cast<int64_t>(record.number));
  putPlace(record);
  putTimes(record);
  putKind(record);
  json += '}';
}

void tJsonLines::putPlace(tRecord const& record) {
  if (!record.file.empty()) putText("code.file.path", record.file);
  if (record.sourceLine) putNumber("code.line.number", *record.sourceLine);
  if (!record.function.empty()) putText("code.function.name", record.function);
  if (record.thread) putNumber("thread.id", *record.thread);
}

void tJsonLines::putTimes(tRecord const& record) {
  if (record.stamp) putText("oxdiag.stamp", std::to_string(*record.stamp));
  if (record.delta) putNumber("oxdiag.delta", *record.delta);
  if (!record.time) return;
  if (!firstTime) firstTime = record.time;
  putNumber("oxdiag.time_ns", static_cast<int64_t>(*record.time - *firstTime));
}

void tJsonLines::putKind(tRecord const& record) {
  putText("oxdiag.kind", nameOf(record.kind));
  putNumber("oxdiag.depth", record.depth);
  if (record.code) putNumber("oxdiag.status", *record.code);
  if (!record.object.empty()) putText("oxdiag.object", record.object);
  if (!record.category.empty()) putText("oxdiag.category", record.category);
  if (record.isCut) putMember("oxdiag.cut");
  if (record.isCut) json += "true";
}

// Nothing in a name is escaped.
void tJsonLines::putMember(std::string_view name) {
  json += json.back() == '{' ? "\"" : ",\"";
  json += name;
  json += "\":";
}

void tJsonLines::putText(std::string_view name, std::string_view text) {
  putMember(name);
  appendJsonText(json, text);
}

void tJsonLines::putNumber(std::string_view name, int64_t number) {
  putMember(name);
  char digits[24];
  json.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

}  // namespace oxdiagview
