#include "oxdiagview/recordColor.h"

namespace oxdiagview {
namespace {

constexpr uint32_t kFailure = 140;  // verbosities from here to
constexpr uint32_t kResult = 150;   // here are of failures

constexpr std::string_view kPlain = "";
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kBoldRed = "\x1b[1;31m";
constexpr std::string_view kYellow = "\x1b[33m";
constexpr std::string_view kCyan = "\x1b[36m";

bool isError(std::optional<int32_t> code) {
  return code && *code < 0;
}

}  // namespace

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

}  // namespace oxdiagview
