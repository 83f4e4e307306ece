#include "trace/tTraceOptionReader.h"

#include "config/numberText.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"

namespace nOXDIAG100 {
namespace {

// A destination that options can name. `getInstance` returns null when it cannot be created.
struct tSink {
  char const* name;
  iTraceDestination* (*getInstance)();
};

iTraceDestination* getDebuggerPrint() {
  return &tVEXTraceDestination::getInstance();
}

constexpr tSink kSinks[] = {
    {"vex", &getDebuggerPrint},
};

bool isEqual(char const* left, char const* right) {
  return __builtin_strcmp(left, right) == 0;
}

bool isOption(char const* word) {
  return word[0] == '-' && word[1] == '-';
}

iTraceDestination* findSink(char const* name) {
  for (tSink const& sink : kSinks) {
    if (isEqual(name, sink.name)) return sink.getInstance();
  }
  return nullptr;
}

}  // namespace

tTraceOptionReader::tTraceOptionReader(tTrace& trace, int argc, char** argv)
    : trace(trace),
      filter(trace.getFilter()),
      next(argv),
      end(argv == nullptr || argc < 0 ? argv : argv + argc) {
}

void tTraceOptionReader::read() {
  while (!isAtEnd()) readOption(takeWord());
  apply();
}

bool tTraceOptionReader::hasValue() const {
  return !isAtEnd() && !isOption(*next);
}

char const* tTraceOptionReader::takeWord() {
  return *next++;
}

char const* tTraceOptionReader::takeValue() {
  return hasValue() ? takeWord() : nullptr;
}

void tTraceOptionReader::readOption(char const* word) {
  if (readSwitch(word)) return;
  if (isEqual(word, "--on")) {
    master = kOn;
  } else if (isEqual(word, "--off")) {
    master = kOff;
  } else if (isEqual(word, "--prefixwidth")) {
    readWidth();
  } else if (isEqual(word, "--filter")) {
    readFilter();
  } else if (isEqual(word, "--destination")) {
    readDestination();
  } else if (isEqual(word, "--calibrate")) {
    calibrates = true;
  } else if (isEqual(word, "--mutex-kernel-token")) {
    readTokens();
  }
}

bool tTraceOptionReader::readSwitch(char const* word) {
  for (u32 index = 0; index < tTraceSwitchTable::kCount; ++index) {
    if (!isEqual(word, tTraceSwitchTable::entries[index].option)) continue;
    readSwitchValue(index);
    return true;
  }
  return false;
}

void tTraceOptionReader::readSwitchValue(u32 index) {
  i32 const field = tTraceSwitchTable::entries[index].filterField;
  bool const isFiltered = filter != nullptr && field != tTraceSwitchTable::kNoField;
  char const* const value = takeValue();
  switches[index] = kOn;
  if (value == nullptr) {
    if (isFiltered) filter->removeField(field);
  } else if (isEqual(value, "off")) {
    switches[index] = kOff;
  } else if (!isEqual(value, "on") && isFiltered) {
    filter->addTerm(value, tTraceFilter::kAnd, field);
  }
}

void tTraceOptionReader::readWidth() {
  char const* const value = takeValue();
  if (value == nullptr) return;
  width = readNumber(value);
  hasWidth = true;
}

void tTraceOptionReader::readFilter() {
  char const* const expression = takeValue();
  if (filter == nullptr) return;
  if (expression == nullptr) {
    filter->removeAll();
  } else {
    filter->parseExpression(expression);
  }
}

void tTraceOptionReader::readDestination() {
  if (!hasValue()) {
    destination = &tVEXTraceDestination::getInstance();
    if (!isAtEnd()) takeWord();
    return;
  }
  iTraceDestination* const chosen = findSink(takeWord());
  char** const words = next;
  while (hasValue()) takeWord();
  if (chosen == nullptr) return;
  destination = chosen;
  if (next != words) chosen->configure(static_cast<int>(next - words), words);
}

void tTraceOptionReader::readTokens() {
  // The second half is read from the colon itself on, which is no digit.
  for (; !isAtEnd(); trace.mutexKernelToken[1] = 0) {
    trace.mutexKernelToken[0] = readNumber(takeWord());
  }
}

void tTraceOptionReader::apply() {
  if (master != kUnchanged) trace.enabled = master == kOn ? 1 : 0;
  for (u32 index = 0; index < tTraceSwitchTable::kMutex; ++index) {
    if (switches[index] == kUnchanged) continue;
    trace.*tTraceSwitchTable::entries[index].value = switches[index] == kOn ? 1 : 0;
  }
  applyMutex();
  if (hasWidth) trace.setMinPrefixWidth(width);
  if (destination != nullptr) trace.setDestination(*destination);
  if (calibrates) trace.calibrate();
}

void tTraceOptionReader::applyMutex() {
  if (switches[tTraceSwitchTable::kMutex] == kOn) trace.enableMutex();
  if (switches[tTraceSwitchTable::kMutex] == kOff) trace.disableMutex();
}

}  // namespace nOXDIAG100
