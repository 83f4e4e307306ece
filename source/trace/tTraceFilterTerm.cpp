#include "trace/tTraceFilterTerm.h"

#include "config/options/numberText.h"
#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceFilterLine.h"
#include "trace/traceFilterWords.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {
namespace {

constexpr i32 kOperatorCount = sizeof(kTraceFilterOperators) / sizeof(kTraceFilterOperators[0]);

// For each operator the orders that satisfy it: bit 0 less, bit 1 equal, bit 2 greater.
constexpr u8 kSatisfyingOrders[kOperatorCount] = {0b010, 0b101, 0b100, 0b001, 0b110, 0b011};

bool beginsWith(char const* text, size_t length, char const* word) {
  size_t const wordLength = __builtin_strlen(word);
  return wordLength <= length && __builtin_memcmp(text, word, wordLength) == 0;
}

// The longest operator counts, so that ">=" is not taken for ">": it stands behind the shorter
// ones.
i32 findOperator(char const* text, size_t length) {
  i32 found = tTraceFilterTerm::kNoOperator;
  i32 candidate = 0;
  for (char const* const word : kTraceFilterOperators) {
    if (beginsWith(text, length, word)) found = candidate;
    ++candidate;
  }
  return found;
}

i32 compareNumbers(u32 left, u32 right) {
  return left < right ? -1 : (left > right ? 1 : 0);
}

i32 compareTexts(char const* left, char const* right) {
  while (*left != '\0' && *left == *right) {
    ++left;
    ++right;
  }
  return compareNumbers(static_cast<u8>(*left), static_cast<u8>(*right));
}

bool isSatisfyingOrder(i32 operation, i32 order) {
  return ((kSatisfyingOrders[operation] >> (order + 1)) & 1) != 0;
}

bool isKeptAsNumber(i32 field) {
  return field == tTraceFilter::kLineNumber || field == tTraceFilter::kVerbosity;
}

}  // namespace

tTraceFilterTerm* tTraceFilterTerm::create(char const* operatorAndValue, size_t length,
                                           u32 connector, i32 field) {
  i32 const operation = findOperator(operatorAndValue, length);
  char const* value = operatorAndValue;
  char const* const end = operatorAndValue + length;
  if (operation != kNoOperator) value += __builtin_strlen(kTraceFilterOperators[operation]);
  while (value != end && isTraceFilterBlank(*value)) ++value;

  size_t const valueLength = static_cast<size_t>(end - value);
  size_t const textSize = isKeptAsNumber(field) ? 0 : valueLength + 1;
  i32 status = 0;
  tMemBlockReferenceBase block;
  block.allocate(sizeof(tTraceFilterTerm) + textSize, kMemLongLived, status);
  void* const address = block.getAddress();
  if (address == nullptr) return nullptr;
  auto* const term = new (address)
      tTraceFilterTerm(static_cast<tMemBlockReferenceBase&&>(block), connector, field);
  term->operation = operation;
  term->setValue(value, valueLength);
  return term;
}

void tTraceFilterTerm::destroy(tTraceFilterTerm* term) {
  // The term lies in the block that it owns, so the ownership must leave it first.
  tMemBlockReferenceBase const block(static_cast<tMemBlockReferenceBase&&>(term->block));
  term->~tTraceFilterTerm();
}

bool tTraceFilterTerm::evaluate(tTraceFilterLine const& line, bool outcomeBefore) const {
  if (operation == kNoOperator) return outcomeBefore;
  return isSatisfyingOrder(operation, compare(line));
}

bool tTraceFilterTerm::isSatisfied(i32 operation, u32 left, u32 right) {
  return isSatisfyingOrder(operation, compareNumbers(left, right));
}

tTraceFilterTerm::tTraceFilterTerm(tMemBlockReferenceBase&& itsBlock, u32 connector, i32 field)
    : connector(connector), field(field), block(static_cast<tMemBlockReferenceBase&&>(itsBlock)) {
}

void tTraceFilterTerm::setValue(char const* value, size_t length) {
  number = readNumber(value, length);
  if (isKeptAsNumber(field)) return;
  char* const copy = reinterpret_cast<char*>(this + 1);
  __builtin_memcpy(copy, value, length);
  copy[length] = '\0';
  text = copy;
}

i32 tTraceFilterTerm::compare(tTraceFilterLine const& line) const {
  switch (field) {
    case tTraceFilter::kComponentName:
      return compareTexts(line.component, text);
    case tTraceFilter::kComponentVersion:
      return compareTexts(line.getVersion(), text);
    case tTraceFilter::kFileName:
      return compareTexts(line.file, text);
    case tTraceFilter::kLineNumber:
      return compareNumbers(line.line, number);
    case tTraceFilter::kThreadId:
      return compareNumbers(line.getThreadId(), number);
    default:
      return compareNumbers(line.verbosity, number);
  }
}

}  // namespace nOXDIAG100
