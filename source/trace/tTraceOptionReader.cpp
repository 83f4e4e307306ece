#include "trace/tTraceOptionReader.h"

#include "config/options/numberText.h"
#include "config/options/optionWord.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/destinationSwitches.h"
#include "trace/tPatience.h"
#include "trace/tStreamHold.h"
#include "trace/tTraceCalibration.h"
#include "trace/tTraceSwitch.h"
#include "trace/turnMutex.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDashCount = 2;

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
    {"recorder", &getOrMake<tRecorderTraceDestination>},
};

iTraceDestination* findSink(char const* name) {
  for (tSink const& sink : kSinks) {
    if (isEqual(name, sink.name)) return sink.getInstance();
  }
  return nullptr;
}

}  // namespace

tTraceOptionReader::tTraceOptionReader(tTraceParts& stream, int argc, char** argv)
    : stream(stream), filter(stream.filter), next(argv), end(argv + countWords(argc, argv)) {
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

// All options begin with the same two dashes: what follows them tells the words apart sooner.
void tTraceOptionReader::readOption(char const* word) {
  if (!isOption(word)) return;
  char const* const name = word + kDashCount;
  if (readSwitch(name)) return;
  if (isEqual(name, "on")) {
    master = kOn;
  } else if (isEqual(name, "off")) {
    master = kOff;
  } else if (isEqual(name, "prefixwidth")) {
    readWidth();
  } else if (isEqual(name, "filter")) {
    readFilter();
  } else if (isEqual(name, "destination")) {
    readDestination();
  } else if (isEqual(name, "calibrate")) {
    calibrates = true;
  } else if (isEqual(name, "mutex-kernel-token")) {
    readTokens();
  }
}

bool tTraceOptionReader::readSwitch(char const* name) {
  for (tTraceSwitch const& entry : kTraceSwitches) {
    if (!isEqual(name, entry.name)) continue;
    readSwitchValue(entry.which, entry.filterField);
    return true;
  }
  return false;
}

void tTraceOptionReader::readSwitchValue(tLineShape::tSwitch which, i32 field) {
  bool const isFiltered = filter != nullptr && field != tTraceFilter::kNoField;
  char const* const value = takeValue();
  tOnOff const said = value == nullptr ? tOnOff::kNeither : readOnOff(value);
  switches[which] = said == tOnOff::kOff ? kOff : kOn;
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
  if (!hold.holdLines(stream, tPatience())) tPatience::setExhausted(true);
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
  bool const isConfigured = wordCount != 0 && configureDestination(*chosen, wordCount, words);
  if (wordCount != 0 && !isConfigured) {
    tPatience::setExhausted(true);
    return;
  }
  destinationIsChanged = isConfigured || (destinationIsChanged && destination == chosen);
  destination = chosen;
}

void tTraceOptionReader::readTokens() {
  // The second half is read from the colon itself on, which is no digit.
  for (; !isAtEnd(); stream.mutexKernelToken[1] = 0) {
    stream.mutexKernelToken[0] = readNumber(takeWord());
  }
}

void tTraceOptionReader::apply() {
  turn(tLineShape::kEnabled, master);
  for (tTraceSwitch const& entry : kTraceSwitches) turn(entry.which, switches[entry.which]);
  if (hasWidth) stream.setWidth(width);
  if (destination != nullptr) switchTo(stream, *destination, destinationIsChanged);
  if (calibrates) tTraceCalibration::calibrate(stream);
}

void tTraceOptionReader::turn(tLineShape::tSwitch which, tPending pending) {
  if (pending == kUnchanged) return;
  if (which == tLineShape::kMutex) {
    turnMutex(stream, pending == kOn);
  } else {
    stream.turn(which, pending == kOn);
  }
}

}  // namespace nOXDIAG100
