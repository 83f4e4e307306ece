#include "oxdiagk/tTrace.h"

#include "config/tInstancePlace.h"
#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/tLiveStreams.h"
#include "trace/tPatience.h"
#include "trace/tStreamLock.h"
#include "vexk/cpu.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constinit tInstancePlace<tTrace> instance;

// Of the word about hidden lines: the thread is in the upper half, its lines are in the lower one.
constexpr u32 kThreadShift = 32;

u64 withThread(u64 thread, u32 lines) {
  return lines == 0 ? 0 : thread << kThreadShift | lines;
}

}  // namespace

u64 readTimeStampCounter() {
  return vexReadTimeStampCounter();
}

tTrace& tTrace::getInstance(char* /*name*/) {
  return instance.get();
}

void tTrace::constructInstance() {
  tPatience::setExhausted(false);
  new (instance.take()) tTrace(tVEXTraceDestination::getInstance());
}

void tTrace::destroyInstance() {
  tTrace& stream = getInstance();
  tStreamGuard const guard(stream);
  if (!guard.isHeld()) return;
  stream.end();
  instance.destroy();
}

tTrace::tTrace(iTraceDestination& first) : slot(first), filter(tTraceFilter::create()) {
  while (!tStreamLock::acquire()) {
  }
  tLiveStreams::add(*this);
  tStreamLock::release();
}

tTrace::~tTrace() {
  if (!isBuilt()) return;
  while (!tStreamLock::acquire()) {
  }
  tPatienceScope const patienceOfAll;
  end();
  tLiveStreams::remove(*this);
  tStreamLock::release();
}

// Whoever does not come out of a put is waited for once, and not by every pop again; at the end of
// the module not by its destinations either.
void tTrace::end() {
  awaitTexts();
  closeMutex();
  delete filter;
  filter = nullptr;
  while (!savedConfigurations.empty()) popConfiguration();
  leaveDestination();
  // A saved configuration may have switched the mutex on again.
  closeMutex();
}

void tTrace::setMinPrefixWidth(u32 width) {
  change(minPrefixWidth, width);
}

u32 tTrace::getMinPrefixWidth() const {
  return load(minPrefixWidth);
}

i32 tTrace::getNestingLevel() const {
  return load(nestingLevel);
}

iTraceDestination* tTrace::getDestination() {
  return slot.get();
}

tTraceFilter* tTrace::getFilter() {
  return filter;
}

void tTrace::enable() {
  change(enabled, 1);
}

void tTrace::disable() {
  change(enabled, 0);
}

u32 tTrace::isEnabled() const {
  return load(enabled);
}

// What another thread left is no line around this one. So whatever lines of threads without a
// common lock do to each other, no hidden line stays behind for good.
void tTrace::beginVerdict(bool isPassed) {
  store(lineSuppressed, isPassed ? 0 : 1);
  u64 const before = load(hiddenLines);
  if (isPassed && before == 0) return;
  u64 const thread = tThreadUtility::getCurrentThreadId();
  u32 const around = before >> kThreadShift == thread ? static_cast<u32>(before) : 0;
  store(hiddenLines, withThread(thread, around << 1 | (isPassed ? 0u : 1u)));
}

void tTrace::endVerdict() {
  u64 const before = load(hiddenLines);
  u64 const thread = before >> kThreadShift;
  u32 around = static_cast<u32>(before) >> 1;
  if (around != 0 && thread != tThreadUtility::getCurrentThreadId()) around = 0;
  store(lineSuppressed, around & 1);
  if (before != 0) store(hiddenLines, withThread(thread, around));
}

tTrace& tTrace::endl() {
  append("\n");
  endVerdict();
  endLine();
  setLastLineTime(readTimeStampCounter());
  return *this;
}

}  // namespace nOXDIAG100
