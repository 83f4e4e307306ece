#include "trace/tTraceFilterParser.h"

#include "oxdiagk/tTraceFilter.h"
#include "trace/traceFilterWords.h"

namespace nOXDIAG100 {
namespace {

// Which field a shortened word means depends on this order: "comp" is the component's name.
constexpr i32 kMatchingOrder[] = {tTraceFilter::kLineNumber,       tTraceFilter::kComponentName,
                                  tTraceFilter::kComponentVersion, tTraceFilter::kFileName,
                                  tTraceFilter::kVerbosity,        tTraceFilter::kThreadId};
static_assert(sizeof(kMatchingOrder) / sizeof(kMatchingOrder[0]) == tTraceFilter::kFieldCount);

bool isOperatorCharacter(char character) {
  return character == '=' || character == '!' || character == '>' || character == '<';
}

bool endsFieldWord(char character) {
  return character == '\0' || isTraceFilterBlank(character) || isOperatorCharacter(character);
}

bool endsValue(char character) {
  return character == '\0' || isTraceFilterBlank(character) || character == '|' || character == '&';
}

bool isLeadingPart(char const* word, size_t length, char const* name) {
  for (size_t index = 0; index < length; ++index) {
    if (word[index] != name[index]) return false;
  }
  return true;
}

i32 findField(char const* word, size_t length) {
  if (length == 0) return tTraceFilter::kNoField;
  for (i32 const field : kMatchingOrder) {
    if (isLeadingPart(word, length, kTraceFilterFields[field])) return field;
  }
  return tTraceFilter::kNoField;
}

}  // namespace

void tTraceFilterParser::parse() {
  for (skipBlanks(); !isAtEnd(); skipBlanks()) {
    if (!parseTerm()) return;
  }
}

bool tTraceFilterParser::parseTerm() {
  u32 const connector = takeConnector();
  skipBlanks();
  i32 const field = takeField();
  skipBlanks();
  char const* const operatorAndValue = position;
  while (isOperatorCharacter(*position)) ++position;
  skipBlanks();
  char const* const value = position;
  while (!endsValue(*position)) ++position;
  if (position == value) return false;
  filter.addTerm(operatorAndValue, static_cast<size_t>(position - operatorAndValue), connector,
                 field);
  return true;
}

u32 tTraceFilterParser::takeConnector() {
  bool const isPair = position[0] == position[1];
  if (isPair && (*position == '&' || *position == '|')) {
    u32 const connector = *position == '&' ? tTraceFilter::kAnd : tTraceFilter::kOr;
    position += 2;
    return connector;
  }
  filter.removeAll();
  return tTraceFilter::kFirst;
}

i32 tTraceFilterParser::takeField() {
  char const* const word = position;
  while (!endsFieldWord(*position)) ++position;
  return findField(word, static_cast<size_t>(position - word));
}

void tTraceFilterParser::skipBlanks() {
  while (isTraceFilterBlank(*position)) ++position;
}

}  // namespace nOXDIAG100
