#include "trace/tLineOpening.h"

#include "trace/tTraceFilterLine.h"
#include "trace/tTracePrefix.h"
#include "vexk/sync.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kBlanksPerLevel = 2;
constexpr char kBlanks[] = "                                                                ";
constexpr u64 kMostBlanks = sizeof(kBlanks) - 1;

tLineClock::tOffset getOffset(tTrace::tTraceType type) {
  if (type == tTrace::kBlockEntry) return tLineClock::kBlockEntryOffset;
  return type == tTrace::kBlockExit ? tLineClock::kBlockExitOffset : tLineClock::kLineOffset;
}

}  // namespace

inline u64 tLineOpening::takeTimeDelta(bool isShown) {
  if (!shape.isOn(tLineShape::kTimeDelta)) return 0;
  return parts.clock.takeDelta(startTime, getOffset(type), isShown, parts.carriedDelta);
}

inline void tLineOpening::hide() {
  takeTimeDelta(false);
  if (type == tTrace::kBlockExit) leaveBlock();
  if (type == tTrace::kBlockEntry) enterBlock();
}

void tLineOpening::open() {
  startTime = vexReadTimeStampCounter();
  lock();
  parts.clock.start(startTime);
  parts.beginVerdict(isPassed());
  if (parts.isWriting()) {
    show(nullptr);
  } else {
    hide();
  }
}

inline void tLineOpening::begin() {
  readTime();
  lock();
  readTime();
}

bool tLineOpening::openIfShown(tTraceSite const* site) {
  begin();
  return openOrEnd(site, shape.isOn(tLineShape::kEnabled) && isPassed());
}

bool tLineOpening::openIfAdmitted(tTraceSite const* site, tLineLimit& limit, tLineLimit::tRule rule,
                                  u32 n, u32& leftOut) {
  begin();
  return openOrEnd(site,
                   shape.isOn(tLineShape::kEnabled) && isPassed() && limit.admit(rule, n, leftOut));
}

inline bool tLineOpening::openOrEnd(tTraceSite const* site, bool isShown) {
  if (isShown) {
    parts.beginVerdict(true);
    show(site);
    return true;
  }
  hide();
  parts.lock.end();
  parts.clock.end();
  return false;
}

void tLineOpening::show(tTraceSite const* site) {
  u64 const timeDelta = takeTimeDelta(true);
  if (!isCopied(site)) {
    tTracePrefix(parts, shape, tLineFacts{origin, verbosity, startTime, timeDelta}).write();
  }
  if (type == tTrace::kBlockExit) leaveBlock();
  if (shape.isOn(tLineShape::kIndenting)) indent();
  if (type == tTrace::kBlockEntry) enterBlock();
}

// Once in front of the wait for the lock, as every line, and behind it if a time was switched on
// meanwhile.
void tLineOpening::readTime() {
  if (startTime != 0 || !shape.showsTime()) return;
  startTime = vexReadTimeStampCounter();
  parts.clock.start(startTime);
}

// The line is shaped by what is set once it is the thread's.
void tLineOpening::lock() {
  if (!shape.isOn(tLineShape::kMutex)) return;
  parts.lock.begin(kSyncWaitForever);
  shape = parts.getShape();
}

bool tLineOpening::isPassed() const {
  tTraceFilter const* const filter = parts.filter;
  if (filter == nullptr) return true;
  tTraceFilter::tVerdict const verdict = filter->judge(verbosity);
  if (verdict != tTraceFilter::kUndecided) return verdict == tTraceFilter::kShown;
  return filter->evaluate(
      tTraceFilterLine(origin.component, origin.version, origin.line, origin.file, verbosity));
}

bool tLineOpening::isCopied(tTraceSite const* site) const {
  u32 const length = shape.getWidth() - 1;
  if (site == nullptr || !shape.isStandard() || length > tTraceSite::kTextSize) return false;
  return site->isCopied() && parts.buffer.appendPrefix(site->getText(), length);
}

void tLineOpening::indent() {
  i32 const level = loadRelaxed(parts.nestingLevel);
  if (level <= 0) return;
  u64 blanks = kBlanksPerLevel * static_cast<u64>(level);
  for (; blanks > kMostBlanks; blanks -= kMostBlanks) {
    parts.buffer.append(kBlanks, kMostBlanks, parts.slot);
  }
  parts.buffer.append(kBlanks, blanks, parts.slot);
}

// All threads share the level without a lock; an update must at least not be lost, for a lost one
// would shift the indentation for good.
void tLineOpening::enterBlock() {
  __atomic_fetch_add(&parts.nestingLevel, 1, __ATOMIC_RELAXED);
}

void tLineOpening::leaveBlock() {
  i32 level = loadRelaxed(parts.nestingLevel);
  i32 lowered;
  do {
    lowered = level > 0 ? level - 1 : 0;
  } while (!__atomic_compare_exchange_n(&parts.nestingLevel, &level, lowered, true,
                                        __ATOMIC_RELAXED, __ATOMIC_RELAXED));
}

}  // namespace nOXDIAG100
