#include "oxdiagk/tTrace.h"

#include "config/tInstancePlace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/destinationSwitches.h"
#include "trace/tLineOpening.h"
#include "trace/tLiveStreams.h"
#include "trace/tPatience.h"
#include "trace/tStreamLock.h"
#include "trace/turnMutex.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {
namespace {

constinit tInstancePlace<tTrace> instance;

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
  tStreamGuard const guard(stream.parts);
  if (!guard.isHeld()) return;
  stream.end();
  instance.destroy();
}

tTrace::tTrace(iTraceDestination& first) : parts(first) {
  while (!tStreamLock::acquire()) {
  }
  tLiveStreams::add(parts);
  tStreamLock::release();
}

tTrace::~tTrace() {
  if (!parts.isBuilt()) return;
  while (!tStreamLock::acquire()) {
  }
  tPatienceScope const patienceOfAll;
  end();
  tLiveStreams::remove(parts);
  tStreamLock::release();
}

// Whoever does not come out of a put is waited for once, and not by every pop again; at the end of
// the module not by its destinations either.
void tTrace::end() {
  parts.isEnding = true;
  awaitTexts(parts);
  parts.lock.close();
  delete parts.filter;
  parts.filter = nullptr;
  while (!parts.savedConfigurations.empty()) popConfiguration();
  leaveDestination(parts, this != &getInstance());
}

void tTrace::setMinPrefixWidth(u32 width) {
  parts.setWidth(width);
}

u32 tTrace::getMinPrefixWidth() const {
  return parts.getShape().getWidth();
}

i32 tTrace::getNestingLevel() const {
  return loadRelaxed(parts.nestingLevel);
}

iTraceDestination* tTrace::getDestination() {
  return parts.slot.get();
}

iTraceDestination* tTrace::setDestination(iTraceDestination& next) {
  return switchTo(parts, next, false);
}

tTraceFilter* tTrace::getFilter() {
  return parts.filter;
}

void tTrace::enable() {
  parts.turn(tLineShape::kEnabled, true);
}

void tTrace::disable() {
  parts.turn(tLineShape::kEnabled, false);
}

u32 tTrace::isEnabled() const {
  return parts.getShape().isOn(tLineShape::kEnabled) ? 1 : 0;
}

void tTrace::enableMutex() {
  turnMutex(parts, true);
}

void tTrace::disableMutex() {
  turnMutex(parts, false);
}

u32 tTrace::mutexIsEnabled() const {
  return parts.getShape().isOn(tLineShape::kMutex) ? 1 : 0;
}

tTrace& tTrace::putPrefix(char const* component, tSSVersion version, unsigned int line,
                          char const* file, unsigned int verbosity, tTraceType type) {
  if (!parts.isBuilt()) return *this;
  tLineOpening(parts, tLineOrigin{component, file, version, line}, verbosity, type).open();
  return *this;
}

tTrace& tTrace::putPrefix(char* component, tSSVersion version, unsigned int line, char* file,
                          unsigned int verbosity, tTraceType type) {
  return putPrefix(static_cast<char const*>(component), version, line,
                   static_cast<char const*>(file), verbosity, type);
}

tTrace* tTrace::openLine(tLineOrigin const& origin, u32 verbosity, tTraceType type) {
  if (!parts.isBuilt()) return nullptr;
  return tLineOpening(parts, origin, verbosity, type).openIfShown(nullptr) ? this : nullptr;
}

tTrace* tTrace::openSite(tTraceSite const& site, u32 verbosity, tTraceType type) {
  if (!parts.isBuilt()) return nullptr;
  return tLineOpening(parts, site, verbosity, type).openIfShown(&site) ? this : nullptr;
}

// The line about what was left out is of the same place, and in front of the one that is let
// through.
tTrace* tTrace::openLimited(tTraceSite const* site, tLineOrigin const& origin, u32 verbosity,
                            tLineLimit& limit, tLineLimit::tRule rule, u32 n) {
  if (!parts.isBuilt()) return nullptr;
  u32 leftOut = 0;
  tLineOpening first(parts, origin, verbosity, kTraceLine);
  if (!first.openIfAdmitted(site, limit, rule, n, leftOut)) return nullptr;
  if (leftOut == 0) return this;
  put(leftOut, 10).put(leftOut == 1 ? " line left out" : " lines left out").endl();
  return tLineOpening(parts, origin, verbosity, kTraceLine).openIfShown(site) ? this : nullptr;
}

tTrace& tTrace::endl() {
  if (parts.isWriting()) parts.buffer.endPiece(parts.slot);
  parts.endVerdict();
  parts.lock.end();
  parts.clock.end();
  return *this;
}

}  // namespace nOXDIAG100
