#include "trace/tTraceOptionReader.h"

#include "config/options/numberText.h"
#include "config/options/optionWord.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/tPatience.h"
#include "trace/tStreamHold.h"

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

// Made when it is first chosen.
template <class T>
iTraceDestination* getOrMake() {
  return T::getInstance();
}

constexpr tSink kSinks[] = {
    {"vex", &getDebuggerPrint},
    {"serial", &getOrMake<tSerialTraceDestination>},
    {"file", &getOrMake<tFileTraceDestination>},
};

iTraceDestination* findSink(char const* name) {
  for (tSink const& sink : kSinks) {
    if (isEqual(name, sink.name)) return sink.getInstance();
  }
  return nullptr;
}

}  // namespace

tTraceOptionReader::tTraceOptionReader(tTrace& trace, int argc, char** argv)
    : trace(trace), filter(trace.getFilter()), next(argv), end(argv + countWords(argc, argv)) {
}

// Who does not come out of a put, or does not end a line, is waited for once, and not by every
// option again.
void tTraceOptionReader::read() {
  tPatienceScope const patienceOfAll;
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
  tOnOff const said = value == nullptr ? tOnOff::kNeither : readOnOff(value);
  switches[index] = said == tOnOff::kOff ? kOff : kOn;
  if (!isFiltered || said != tOnOff::kNeither) return;
  tStreamHold hold;
  holdLines(hold);
  if (value == nullptr) {
    filter->removeField(field);
  } else {
    filter->addTerm(value, tTraceFilter::kAnd, field);
  }
}

void tTraceOptionReader::holdLines(tStreamHold& hold) {
  if (!hold.holdLines(trace, tPatience())) tPatience::setExhausted(true);
}

void tTraceOptionReader::readWidth() {
  char const* const value = takeValue();
  if (value == nullptr) return;
  width = readNumber(value);
  hasWidth = true;
}

// A filter is replaced term by term, and a line that is judged meanwhile may pass what neither the
// former filter nor the next one passes. Locked lines wait for that; should one not end, the filter
// is changed all the same.
void tTraceOptionReader::readFilter() {
  char const* const expression = takeValue();
  if (filter == nullptr) return;
  tStreamHold hold;
  holdLines(hold);
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
  int const wordCount = static_cast<int>(next - words);
  bool const isConfigured =
      wordCount != 0 && tTrace::configureDestination(*chosen, wordCount, words);
  if (wordCount != 0 && !isConfigured) {
    tPatience::setExhausted(true);
    return;
  }
  destinationIsChanged = isConfigured || (destinationIsChanged && destination == chosen);
  destination = chosen;
}

void tTraceOptionReader::readTokens() {
  // The second half is read from the colon itself on, which is no digit.
  for (; !isAtEnd(); trace.mutexKernelToken[1] = 0) {
    trace.mutexKernelToken[0] = readNumber(takeWord());
  }
}

void tTraceOptionReader::apply() {
  if (master != kUnchanged) tTrace::store(trace.enabled, master == kOn ? 1 : 0);
  for (u32 index = 0; index < tTraceSwitchTable::kMutex; ++index) {
    if (switches[index] == kUnchanged) continue;
    tTrace::store(trace.*tTraceSwitchTable::entries[index].value, switches[index] == kOn ? 1 : 0);
  }
  applyMutex();
  if (hasWidth) trace.setMinPrefixWidth(width);
  if (destination != nullptr) trace.switchTo(*destination, destinationIsChanged);
  if (calibrates) trace.calibrate();
}

void tTraceOptionReader::applyMutex() {
  if (switches[tTraceSwitchTable::kMutex] == kOn) trace.enableMutex();
  if (switches[tTraceSwitchTable::kMutex] == kOff) trace.disableMutex();
}

}  // namespace nOXDIAG100
