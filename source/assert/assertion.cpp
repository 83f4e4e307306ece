#include "oxdiagk/assertion.h"

#include "assert/assertSwitches.h"
#include "config/options/optionWord.h"
#include "oxdiagk/tTrace.h"
#include "vexk/debug.h"

namespace nOXDIAG100 {
namespace {

constexpr unsigned int kNotificationVerbosity = 105;
constexpr u32 kTerminationMark = 0xDEADBEEF;
constexpr u64 kTerminationAddress = 0;

bool isCategory(char const* category, char const* name) {
  return category != nullptr && isEqual(category, name);
}

void putHead(tTrace& trace, char const* category) {
  if (isCategory(category, kDefaultCategory)) {
    trace.put("ASSERTION FAILED: ");
  } else if (isCategory(category, kWarningCategory)) {
    trace.put("ASSERTION WARNING: ");
  } else {
    trace.put("ASSERTION FAILED (").put(category).put("): ");
  }
}

}  // namespace

#define OXDIAG_EVALUATION(evaluate, query)                                   \
  bool evaluate(char* category, char* /*component*/, tSSVersion /*version*/, \
                unsigned int /*line*/, char* /*file*/) {                     \
    return tAssertConfiguration::getInstance(category).query(category);      \
  }

OXDIAG_EVALUATION(evalRequire, preconditionsAreEnabled)
OXDIAG_EVALUATION(evalEnsure, postconditionsAreEnabled)
OXDIAG_EVALUATION(evalClassInvariant, classInvariantsAreEnabled)
OXDIAG_EVALUATION(evalLoopInvariant, loopInvariantsAreEnabled)
OXDIAG_EVALUATION(evalCheck, checksAreEnabled)
OXDIAG_EVALUATION(evalException, exceptionsAreEnabled)

void notificationAction(char* category, char* component, tSSVersion version, unsigned int line,
                        char* file, char* message) {
  tTrace& trace = tTrace::getInstance();
  trace.putPrefix(component, version, line, file, kNotificationVerbosity, tTrace::kTraceLine);
  putHead(trace, category);
  trace.put(message).endl();
}

void continuationAction(char* category, char* /*component*/, tSSVersion /*version*/,
                        unsigned int /*line*/, char* /*file*/) {
  tAssertConfiguration const& configuration = tAssertConfiguration::getInstance(category);
  if (configuration.terminateOnViolationIsEnabled(category)) terminate();
  if (configuration.breakOnViolationIsEnabled(category)) breakToDebugger();
}

void breakToDebugger() {
  ssHalt();
}

// As machine code: to a compiler a store through null is a mistake to be reported or left out, and
// so is a loop without an effect.
void terminate() {
  __asm__ volatile("movl %0, (%1)" : : "r"(kTerminationMark), "r"(kTerminationAddress) : "memory");
  for (;;) __asm__ volatile("pause");
}

}  // namespace nOXDIAG100
