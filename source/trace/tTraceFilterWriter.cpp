#include "trace/tTraceFilterWriter.h"

#include "trace/tTraceFilterTerm.h"
#include "trace/traceFilterWords.h"

namespace nOXDIAG100 {
namespace {

constexpr char const* kConnectors[] = {"", " && ", " || "};

}  // namespace

char* tTraceFilterWriter::write(tTraceFilterTerm const* first, unsigned int* needed) {
  text.append(first == nullptr ? "" : " --filter \"");
  for (auto const* term = first; term != nullptr; term = term->next) appendTerm(*term);
  text.append(first == nullptr ? "" : "\"");
  return text.finish(needed);
}

void tTraceFilterWriter::appendTerm(tTraceFilterTerm const& term) {
  text.append(kConnectors[term.getConnector()]).append(kTraceFilterFields[term.getField()]);
  if (term.getOperator() != tTraceFilterTerm::kNoOperator) {
    text.append(kTraceFilterOperators[term.getOperator()]);
  }
  if (term.getText() == nullptr) {
    text.appendNumber(term.getNumber());
  } else {
    text.append(term.getText());
  }
}

}  // namespace nOXDIAG100
