#include "trace/tTracePrefix.h"

#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceFilterLine.h"
#include "vexk/number.h"
#include "vexk/sync.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;
constexpr u32 kHexadecimal = 16;
constexpr u64 kUnlimited = ~0ull;
constexpr u64 kBlanksPerLevel = 2;

// Padding and indentation are written in runs of this length.
constexpr char kDashes[] = "----------------------------------------------------------------";
constexpr char kBlanks[] = "                                                                ";
constexpr u64 kRunLength = sizeof(kDashes) - 1;
static_assert(sizeof(kBlanks) == sizeof(kDashes));

u64 getPadTarget(u32 minPrefixWidth) {
  return minPrefixWidth == 0 ? 0 : minPrefixWidth - 1;
}

u32 getOffsetIndex(tTrace::tTraceType type) {
  if (type == tTrace::kBlockEntry) return 0;
  return type == tTrace::kBlockExit ? 1 : 2;
}

// From the end: a name is shorter than the path before it.
char const* getLastPart(char const* path) {
  char const* part = path + __builtin_strlen(path);
  while (part != path && part[-1] != '/' && part[-1] != '\\') --part;
  return part;
}

char const* orEmpty(char const* text) {
  return text == nullptr ? "" : text;
}

}  // namespace

tTrace& tTrace::putPrefix(char const* component, tSSVersion version, unsigned int line,
                          char const* file, unsigned int verbosity, tTraceType type) {
  if (!isBuilt()) return *this;
  u64 const startTime = readTimeStampCounter();
  beginLine(kSyncWaitForever);
  store(lineStartTime, startTime);
  tTracePrefix::tOrigin const origin{orEmpty(component), version,   line,
                                     orEmpty(file),      verbosity, type};
  tTracePrefix(*this, origin, startTime).open();
  return *this;
}

tTrace& tTrace::putPrefix(char* component, tSSVersion version, unsigned int line, char* file,
                          unsigned int verbosity, tTraceType type) {
  return putPrefix(static_cast<char const*>(component), version, line,
                   static_cast<char const*>(file), verbosity, type);
}

tTracePrefix::tTracePrefix(tTrace& trace, tOrigin const& origin, u64 startTime)
    : tTracePrefix(trace, origin, startTime, trace.getMinPrefixWidth(),
                   trace.truncationIsEnabled() != 0) {
}

tTracePrefix::tTracePrefix(tTrace& trace, tOrigin const& origin, u64 startTime, u32 width,
                           bool isTruncated)
    : trace(trace),
      origin(origin),
      startTime(startTime),
      padTarget(getPadTarget(width)),
      fieldLimit(isTruncated ? padTarget : kUnlimited),
      isWithoutEnd(isTruncated && width == 0) {
}

void tTracePrefix::open() {
  trace.beginVerdict(isPassed());
  bool const isShown = trace.isWriting();
  u64 const timeDelta = takeTimeDelta(isShown);
  if (isShown) write(timeDelta);
  if (origin.type == tTrace::kBlockExit) leaveBlock();
  if (isShown && trace.indentingIsEnabled() != 0) indent();
  if (origin.type == tTrace::kBlockEntry) enterBlock();
}

u32 tTracePrefix::getEnabledFields(tTrace const& trace) {
  u32 const* const switches[kFieldCount] = {
      &trace.componentName, &trace.componentVersion, &trace.lineNumber, &trace.fileName,
      &trace.threadId,      &trace.timeStamp,        &trace.timeDelta,  &trace.verbosity};
  u32 fields = 0;
  for (u32 field = 0; field < kFieldCount; ++field) {
    if (tTrace::load(*switches[field]) != 0) fields |= 1u << field;
  }
  return fields;
}

bool tTracePrefix::isPassed() const {
  tTraceFilter const* const filter = trace.filter;
  if (filter == nullptr) return true;
  return filter->evaluate(tTraceFilterLine(origin.component, origin.version, origin.line,
                                           origin.file, origin.verbosity));
}

u64 tTracePrefix::takeTimeDelta(bool isShown) {
  if (trace.timeDeltaIsEnabled() == 0) return 0;
  u64 const offset = tTrace::load(trace.calibrationOffsets[getOffsetIndex(origin.type)]);
  u64 const carried = tTrace::load(trace.carriedDelta);
  u64 const delta = startTime - (offset + trace.getLastLineTime()) + carried;
  tTrace::store(trace.carriedDelta, isShown ? 0 : delta);
  return delta;
}

void tTracePrefix::write(u64 timeDelta) {
  u32 const fields = getEnabledFields(trace);
  char const* separator = "[";
  for (u32 field = 0; field < kFieldCount && count < fieldLimit; ++field) {
    if (((fields >> field) & 1) == 0) continue;
    put(separator);
    putField(field, timeDelta);
    separator = "--";
  }
  if (count < padTarget) putRun(fields != 0 ? kDashes : kBlanks, padTarget - count);
  if (isWithoutEnd) return;
  trace.append(fields != 0 ? "] " : "  ");
}

void tTracePrefix::putField(u32 field, u64 timeDelta) {
  char version[tSSVersion::kMaxTextSize];
  switch (field) {
    case kComponentName:
      return put(origin.component);
    case kComponentVersion:
      return put(origin.version.toString(version));
    case kLineNumber:
      return putNumber(origin.line, kDecimal);
    case kFileName:
      return put(trace.filePathIsEnabled() != 0 ? origin.file : getLastPart(origin.file));
    case kThreadId:
      put("0x");
      return putNumber(tThreadUtility::getCurrentThreadId(), kHexadecimal);
    case kTimeStamp:
      return putNumber(startTime, kDecimal);
    case kTimeDelta:
      return putNumber(timeDelta, kDecimal);
    default:
      return putNumber(origin.verbosity, kDecimal);
  }
}

void tTracePrefix::put(char const* text) {
  u64 const whole = __builtin_strlen(text);
  u64 const room = fieldLimit - count;
  u64 const length = whole < room ? whole : room;
  trace.append(text, length);
  count += length;
}

void tTracePrefix::putNumber(u64 number, u32 radix) {
  if (count == fieldLimit) return;
  char text[kNumberTextSize];
  vexNumberToText(number, radix, text);
  put(text);
}

void tTracePrefix::putRun(char const* run, u64 length) {
  for (; length > kRunLength; length -= kRunLength) trace.append(run, kRunLength);
  trace.append(run, length);
}

void tTracePrefix::indent() {
  i32 const level = trace.getNestingLevel();
  if (level > 0) putRun(kBlanks, kBlanksPerLevel * static_cast<u64>(level));
}

// All threads share the level without a lock; an update must at least not be lost, for a lost one
// would shift the indentation for good.
void tTracePrefix::enterBlock() {
  __atomic_fetch_add(&trace.nestingLevel, 1, __ATOMIC_RELAXED);
}

void tTracePrefix::leaveBlock() {
  i32 level = __atomic_load_n(&trace.nestingLevel, __ATOMIC_RELAXED);
  i32 lowered;
  do {
    lowered = level > 0 ? level - 1 : 0;
  } while (!__atomic_compare_exchange_n(&trace.nestingLevel, &level, lowered, true,
                                        __ATOMIC_RELAXED, __ATOMIC_RELAXED));
}

}  // namespace nOXDIAG100
