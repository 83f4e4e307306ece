#include "oxdiagview/tJsonLines.h"

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

// Each part but the first member of an object brings the comma in front of it.
void tJsonLines::take(tRecord const& record) {
  json.clear();
  putText(R"({"Body":)", record.text);
  if (start && record.time) putTimestamp(record);
  putSeverity(record);
  putScope(record);
  putAttributes(record);
  json += "}\n";
  output.put(json);
}

// A line of another processor may be a little before the first one.
void tJsonLines::putTimestamp(tRecord const& record) {
  putDigits(R"(,"Timestamp":)", *start + (*record.time - record.firstTime.value_or(*record.time)));
}

void tJsonLines::putSeverity(tRecord const& record) {
  auto const severity = severityOf(record);
  if (severity) putNumber(R"(,"SeverityNumber":)", *severity);
  if (record.verbosity) putDigits(R"(,"SeverityText":)", *record.verbosity);
}

void tJsonLines::putScope(tRecord const& record) {
  if (record.component.empty()) return;
  putText(R"(,"InstrumentationScope":{"Name":)", record.component);
  if (!record.version.empty()) putText(R"(,"Version":)", record.version);
  json += '}';
}

void tJsonLines::putAttributes(tRecord const& record) {
  putNumber(R"(,"Attributes":{"oxdiag.line":)", record.number);
  putPlace(record);
  putTimes(record);
  putKind(record);
  json += '}';
}

void tJsonLines::putPlace(tRecord const& record) {
  if (!record.file.empty()) putText(R"(,"code.file.path":)", record.file);
  if (record.sourceLine) putNumber(R"(,"code.line.number":)", *record.sourceLine);
  if (!record.function.empty()) putText(R"(,"code.function.name":)", record.function);
  if (record.thread) putNumber(R"(,"thread.id":)", *record.thread);
}

void tJsonLines::putTimes(tRecord const& record) {
  if (record.stamp) putDigits(R"(,"oxdiag.stamp":)", *record.stamp);
  if (record.delta) putNumber(R"(,"oxdiag.delta":)", *record.delta);
  if (!record.time) return;
  if (!firstTime) firstTime = record.time;
  putNumber(R"(,"oxdiag.time_ns":)", static_cast<int64_t>(*record.time - *firstTime));
}

void tJsonLines::putKind(tRecord const& record) {
  json += R"(,"oxdiag.kind":")";
  json += nameOf(record.kind);
  json += '"';
  putNumber(R"(,"oxdiag.depth":)", record.depth);
  if (record.code) putNumber(R"(,"oxdiag.status":)", *record.code);
  if (!record.object.empty()) putText(R"(,"oxdiag.object":)", record.object);
  if (!record.category.empty()) putText(R"(,"oxdiag.category":)", record.category);
  if (record.isCut) json += R"(,"oxdiag.cut":true)";
}

void tJsonLines::putText(std::string_view name, std::string_view text) {
  json += name;
  appendJsonText(json, text);
}

template <class tNumber>
void tJsonLines::putNumber(std::string_view name, tNumber number) {
  json += name;
  appendNumber(json, number);
}

void tJsonLines::putDigits(std::string_view name, uint64_t number) {
  json += name;
  json += '"';
  appendNumber(json, number);
  json += '"';
}

}  // namespace oxdiagview
