#include "config/savedSettings.h"
#include "config/tOptionWords.h"
#include "ntos/event.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "vexk/memory.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constexpr i64 kBetweenLooks = -10'000;  // 1 ms, in units of 100 ns from now

// An event that nobody sets is a pause.
void pause() {
  KEVENT never;
  KeInitializeEvent(&never, NotificationEvent, 0);
  LARGE_INTEGER span;
  span.QuadPart = kBetweenLooks;
  KeWaitForSingleObject(&never, Executive, KernelMode, 0, &span);
}

}  // namespace

iTraceDestination* tTrace::setDestination(iTraceDestination& next) {
  if (!isBuilt()) return nullptr;
  tConfigurationGuard const guard(configurationLock);
  put("Switching trace destination to ").put(next.getDescription()).endl();
  iTraceDestination& former = *getDestination();
  char* const settings = copySettings(former, kMemScratch);
  beginSwitch();
  former.close();
  install(next);
  iTraceDestination* const result = next.open() != 0 ? &former : fallBack(former, settings);
  endSwitch();
  _memDelete(settings);
  return result;
}

void tTrace::install(iTraceDestination& next) {
  __atomic_store_n(&destination, &next, __ATOMIC_RELEASE);
}

// From here to endSwitch no other thread is within the destination: it is closed and opened with
// nobody writing. A switch that a destination makes while it is opened is part of the outer one.
void tTrace::beginSwitch() {
  if (switchDepth++ != 0) return;
  __atomic_store_n(&switchingThread, tThreadUtility::getCurrentThreadId(), __ATOMIC_SEQ_CST);
  while (__atomic_load_n(&textsOnTheWay, __ATOMIC_SEQ_CST) != 0) pause();
}

void tTrace::endSwitch() {
  if (--switchDepth == 0) __atomic_store_n(&switchingThread, 0, __ATOMIC_RELEASE);
}

iTraceDestination* tTrace::fallBack(iTraceDestination& former, char const* settings) {
  tOptionWords const words(settings);
  install(former);
  if (words.getCount() != 0) former.configure(words.getCount(), words.getWords());
  if (former.open() != 0) {
    put("Trace destination couldn't be opened!").endl();
    put("Trace destination remains unchanged.").endl();
    return &former;
  }
  install(tVEXTraceDestination::getInstance());
  destination->open();
  put("Trace destination couldn't be opened and previous destination couldn't be restored!").endl();
  put("The trace destination has been changed to VEX print to debugger by default").endl();
  return destination;
}

}  // namespace nOXDIAG100
