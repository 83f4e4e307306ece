#include "oxdiagk/tTraceFilter.h"

#include "trace/tTraceFilterLine.h"
#include "trace/tTraceFilterParser.h"
#include "trace/tTraceFilterShortForm.h"
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

tTraceFilter::tTraceFilter() : shortForm(tTraceFilterShortForm::kEmpty) {
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
  publishShortForm();
  releaseRemoved();
}

void tTraceFilter::removeAll() {
  while (first != nullptr) remove(first);
  setUsedFields(0);
  publishShortForm();
  releaseRemoved();
}

void tTraceFilter::removeField(i32 field) {
  if (!usesField(field)) return;
  for (tTraceFilterTerm* term = first; term != nullptr;) {
    tTraceFilterTerm* const next = term->next;
    if (term->getField() == field) remove(term);
    term = next;
  }
  setUsedFields(usedFields & ~(1u << field));
  if (first != nullptr) first->setConnector(kFirst);
  publishShortForm();
  releaseRemoved();
}

bool tTraceFilter::evaluate(char const* component, char const* versionText, u32 line,
                            char const* file, u32 threadId, u32 verbosity) const {
  return evaluate(tTraceFilterLine(orEmpty(component), orEmpty(versionText), line, orEmpty(file),
                                   threadId, verbosity));
}

bool tTraceFilter::evaluate(tTraceFilterLine const& line) const {
  tVerdict const verdict = judge(line.verbosity);
  if (verdict != kUndecided) return verdict == kShown;
  tTraceFilterShortForm const form(__atomic_load_n(&shortForm, __ATOMIC_RELAXED));
  return form.isWhole() ? form.evaluate(line) : evaluateTerms(line);
}

// Counts itself before it looks at the list: a term that it can come upon is not released.
bool tTraceFilter::evaluateTerms(tTraceFilterLine const& line) const {
  __atomic_fetch_add(&evaluations, 1, __ATOMIC_SEQ_CST);
  bool result = true;
  bool outcome = false;
  tTraceFilterTerm const* term = tTraceFilterTerm::follow(first);
  for (; term != nullptr; term = tTraceFilterTerm::follow(term->next)) {
    outcome = term->evaluate(line, outcome);
    result = combine(result, term->getConnector(), outcome);
  }
  __atomic_fetch_sub(&evaluations, 1, __ATOMIC_SEQ_CST);
  return result;
}

char* tTraceFilter::write(char* buffer, unsigned int size, unsigned int* needed) const {
  return tTraceFilterWriter(buffer, size).write(first, needed);
}

void tTraceFilter::append(tTraceFilterTerm* term) {
  term->previous = last;
  setUsedFields(usedFields | 1u << term->getField());
  tTraceFilterTerm::lead(last == nullptr ? first : last->next, term);
  last = term;
}

// A line that stands at the term finds its way on: the term keeps its link to the next.
void tTraceFilter::remove(tTraceFilterTerm* term) {
  tTraceFilterTerm::lead(term->previous == nullptr ? first : term->previous->next, term->next);
  (term->next == nullptr ? last : term->next->previous) = term->previous;
  term->previous = removed;
  removed = term;
}

void tTraceFilter::setUsedFields(u32 fields) {
  __atomic_store_n(&usedFields, fields, __ATOMIC_RELAXED);
}

// A line that is judged meanwhile goes by the form of before or by this one.
void tTraceFilter::publishShortForm() {
  static_assert(kNoRange == tTraceFilterShortForm::kNoRange);
  tTraceFilterShortForm const form(first, first == last);
  __atomic_store_n(&shortForm, form.getWord(), __ATOMIC_RELEASE);
  __atomic_store_n(&shownRange, form.getShownRange(), __ATOMIC_RELEASE);
}

// Whoever begins to evaluate from here on does not come upon a removed term.
void tTraceFilter::releaseRemoved() {
  if (__atomic_load_n(&evaluations, __ATOMIC_SEQ_CST) != 0) return;
  while (removed != nullptr) {
    tTraceFilterTerm* const term = removed;
    removed = term->previous;
    tTraceFilterTerm::destroy(term);
  }
}

}  // namespace nOXDIAG100
