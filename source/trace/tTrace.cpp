#include "oxdiagk/tTrace.h"

#include "oxdiagk/tTraceFilter.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "vexk/cpu.h"

namespace nOXDIAG100 {
namespace {

// Zeros, before and after the stream's life, are a stream that is not enabled.
alignas(tTrace) constinit u8 instanceStorage[sizeof(tTrace)] = {};

}  // namespace

u64 readTimeStampCounter() {
  return vexReadTimeStampCounter();
}

tTrace& tTrace::getInstance(char* /*name*/) {
  return *reinterpret_cast<tTrace*>(instanceStorage);
}

void tTrace::constructInstance() {
  new (instanceStorage) tTrace(tVEXTraceDestination::getInstance());
}

void tTrace::destroyInstance() {
  getInstance().~tTrace();
  __builtin_memset(instanceStorage, 0, sizeof(instanceStorage));
}

tTrace::tTrace(iTraceDestination& first) : destination(&first), filter(tTraceFilter::create()) {
}

tTrace::~tTrace() {
  closeMutex();
  delete filter;
  filter = nullptr;
  while (!savedConfigurations.empty()) popConfiguration();
  // A saved configuration may have switched the mutex on again.
  closeMutex();
}

void tTrace::setMinPrefixWidth(u32 width) {
  store(minPrefixWidth, width);
}

u32 tTrace::getMinPrefixWidth() const {
  return load(minPrefixWidth);
}

i32 tTrace::getNestingLevel() const {
  return load(nestingLevel);
}

iTraceDestination* tTrace::getDestination() {
  return __atomic_load_n(&destination, __ATOMIC_ACQUIRE);
}

tTraceFilter* tTrace::getFilter() {
  return filter;
}

void tTrace::enable() {
  store(enabled, 1);
}

void tTrace::disable() {
  store(enabled, 0);
}

u32 tTrace::isEnabled() const {
  return load(enabled);
}

tTrace& tTrace::endl() {
  append("\n");
  store(lineSuppressed, 0);
  endLine();
  setLastLineTime(readTimeStampCounter());
  return *this;
}

}  // namespace nOXDIAG100
