#include "oxdiagk/tTraceFilter.h"

#include "trace/tTraceFilterParser.h"
#include "trace/tTraceFilterTerm.h"
#include "trace/tTraceFilterWriter.h"

namespace nOXDIAG100 {
namespace {

constexpr char kDefaultTerm[] = ">=100";

char const* orEmpty(char const* text) {
  return text == nullptr ? "" : text;
}

bool combine(bool result, u32 connector, bool outcome) {
  if (connector == tTraceFilter::kAnd) return result && outcome;
  if (connector == tTraceFilter::kOr) return result || outcome;
  return outcome;
}

}  // namespace

tTraceFilter::tTraceFilter() {
  addTerm(kDefaultTerm, kFirst, kVerbosity);
}

tTraceFilter::~tTraceFilter() {
  removeAll();
}

tTraceFilter* tTraceFilter::create() {
  return new tTraceFilter;
}

void tTraceFilter::parseExpression(char const* expression) {
  if (expression != nullptr) tTraceFilterParser(*this, expression).parse();
}

void tTraceFilter::addTerm(char const* operatorAndValue, u32 connector, i32 field) {
  if (operatorAndValue == nullptr) return;
  addTerm(operatorAndValue, __builtin_strlen(operatorAndValue), connector, field);
}

void tTraceFilter::addTerm(char const* operatorAndValue, size_t length, u32 connector, i32 field) {
  bool const isField = field >= 0 && field < kFieldCount;
  if (operatorAndValue == nullptr || !isField || connector > kOr) return;
  u32 const itsConnector = isEmpty() ? static_cast<u32>(kFirst) : connector;
  tTraceFilterTerm* const term =
      tTraceFilterTerm::create(operatorAndValue, length, itsConnector, field);
  if (term == nullptr) {
    failed = true;
    return;
  }
  append(term);
}

void tTraceFilter::removeAll() {
  while (first != nullptr) remove(first);
  usedFields = 0;
}

void tTraceFilter::removeField(i32 field) {
  if (!usesField(field)) return;
  for (tTraceFilterTerm* term = first; term != nullptr;) {
    tTraceFilterTerm* const next = term->next;
    if (term->getField() == field) remove(term);
    term = next;
  }
  usedFields &= ~(1u << field);
  if (first != nullptr) first->connector = kFirst;
}

bool tTraceFilter::evaluate(char const* component, char const* versionText, u32 line,
                            char const* file, u32 threadId, u32 verbosity) const {
  tTraceFilterLine const facts{
      orEmpty(component), orEmpty(versionText), orEmpty(file), line, threadId, verbosity};
  bool result = true;
  bool outcome = false;
  for (tTraceFilterTerm const* term = first; term != nullptr; term = term->next) {
    outcome = term->evaluate(facts, outcome);
    result = combine(result, term->connector, outcome);
  }
  return result;
}

char* tTraceFilter::write(char* buffer, unsigned int size, unsigned int* needed) const {
  return tTraceFilterWriter(buffer, size).write(first, needed);
}

void tTraceFilter::append(tTraceFilterTerm* term) {
  term->previous = last;
  (last == nullptr ? first : last->next) = term;
  last = term;
  usedFields |= 1u << term->getField();
}

void tTraceFilter::remove(tTraceFilterTerm* term) {
  (term->previous == nullptr ? first : term->previous->next) = term->next;
  (term->next == nullptr ? last : term->next->previous) = term->previous;
  tTraceFilterTerm::destroy(term);
}

}  // namespace nOXDIAG100
