#include "oxdiagk/tTraceParts.h"

#include <stddef.h>

#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

// Of the word about hidden lines: the thread is in the upper half, its lines are in the lower one.
constexpr u32 kThreadShift = 32;

u64 withThread(u64 thread, u32 lines) {
  return lines == 0 ? 0 : thread << kThreadShift | lines;
}

// The layout is that of no type for which the language defines offsetof; every compiler does.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

constexpr u64 kPointer = sizeof(void*);
constexpr u64 kSwitches = 2 * kPointer + sizeof(_STL::vector<char*>) + sizeof(u32);
constexpr u64 kSuppressed = kSwitches + tLineShape::kSwitchCount * sizeof(u32);
constexpr u64 kClock = kSuppressed + 3 * sizeof(u32);
constexpr u64 kMutex = kClock + 5 * sizeof(u64);
constexpr u64 kBuffer = kMutex + kPointer + 2 * sizeof(u32);

static_assert(offsetof(tTraceMembers, destination) == 0);
static_assert(offsetof(tTraceMembers, filter) == kPointer);
static_assert(offsetof(tTraceMembers, savedConfigurations) == 2 * kPointer);
static_assert(offsetof(tTraceMembers, enabled) == kSwitches - sizeof(u32));
static_assert(offsetof(tTraceMembers, switches) == kSwitches);
static_assert(tLineShape::kComponentName == 0 && tLineShape::kComponentVersion == 1);
static_assert(tLineShape::kLineNumber == 2 && tLineShape::kFileName == 3);
static_assert(tLineShape::kFilePath == 4 && tLineShape::kTimeStamp == 5);
static_assert(tLineShape::kTimeDelta == 6 && tLineShape::kVerbosity == 7);
static_assert(tLineShape::kThreadId == 8 && tLineShape::kMutex == 9);
static_assert(tLineShape::kIndenting == 10 && tLineShape::kTruncation == 11);
static_assert(offsetof(tTraceMembers, lineSuppressed) == kSuppressed);
static_assert(offsetof(tTraceMembers, minPrefixWidth) == kSuppressed + 1 * sizeof(u32));
static_assert(offsetof(tTraceMembers, nestingLevel) == kSuppressed + 2 * sizeof(u32));
static_assert(offsetof(tTraceMembers, clock) == kClock && sizeof(tLineClock) == 5 * sizeof(u64));
static_assert(offsetof(tTraceMembers, mutexObject) == kMutex);
static_assert(offsetof(tTraceMembers, mutexKernelToken) == kMutex + kPointer);
static_assert(offsetof(tTraceMembers, buffer) == kBuffer);
static_assert(sizeof(tLineBuffer) == tLineBuffer::kSize + kPointer);
static_assert(offsetof(tTraceMembers, carriedDelta) == kBuffer + sizeof(tLineBuffer));
#pragma GCC diagnostic pop

}  // namespace

tTraceParts::tTraceParts(iTraceDestination& first) : tTraceParts(tLineShape::atStart()) {
  destination = &first;
  filter = tTraceFilter::create();
}

tTraceParts::tTraceParts(tAtRest)
    : tTraceParts(tLineShape::atStart().with(tLineShape::kEnabled, false)) {
}

tTraceParts::tTraceParts(tLineShape first) : shape(first.getWord()) {
  enabled = first.isOn(tLineShape::kEnabled) ? 1 : 0;
  for (u32 place = 0; place < tLineShape::kSwitchCount; ++place) {
    switches[place] = first.isOn(static_cast<tLineShape::tSwitch>(place)) ? 1 : 0;
  }
  minPrefixWidth = first.getWidth();
}

void tTraceParts::turn(tLineShape::tSwitch which, bool isOn) {
  if (!isBuilt()) return;
  change([=](tLineShape before) { return before.with(which, isOn); });
  u32& member = which == tLineShape::kEnabled ? enabled : switches[which];
  follow(member, [=](tLineShape now) { return now.isOn(which) ? 1u : 0u; });
}

void tTraceParts::setWidth(u32 width) {
  if (!isBuilt()) return;
  change([=](tLineShape before) { return before.withWidth(width); });
  follow(minPrefixWidth, [](tLineShape now) { return now.getWidth(); });
}

template <class Change>
void tTraceParts::change(Change changed) {
  u64 before = loadRelaxed(shape);
  while (!__atomic_compare_exchange_n(&shape, &before, changed(tLineShape(before)).getWord(), true,
                                      __ATOMIC_SEQ_CST, __ATOMIC_RELAXED)) {
  }
}

// Of several threads that turn one switch at once, the last one leaves the member as the shape is.
template <class Read>
void tTraceParts::follow(u32& member, Read read) {
  u32 value;
  do {
    value = read(getShape());
    storeOrdered(member, value);
  } while (value != read(tLineShape(loadOrdered(shape))));
}

// What another thread left is no line around this one. So whatever lines of threads without a
// common lock do to each other, no hidden line stays behind for good.
void tTraceParts::rememberVerdict(bool isPassed) {
  u64 const before = loadRelaxed(hiddenLines);
  u64 const thread = tThreadUtility::getCurrentThreadId();
  u32 const around = before >> kThreadShift == thread ? static_cast<u32>(before) : 0;
  storeRelaxed(hiddenLines, withThread(thread, around << 1 | (isPassed ? 0u : 1u)));
}

void tTraceParts::recallVerdict() {
  u64 const before = loadRelaxed(hiddenLines);
  u64 const thread = before >> kThreadShift;
  u32 around = static_cast<u32>(before) >> 1;
  if (around != 0 && thread != tThreadUtility::getCurrentThreadId()) around = 0;
  storeRelaxed(lineSuppressed, around & 1);
  storeRelaxed(hiddenLines, withThread(thread, around));
}

// Within a line that is not shown, the text goes past the line buffer: it is a line of its own, and
// the rest of the other one stays hidden.
void tTraceParts::announce(char const* text, char const* rest) {
  char const* const pieces[] = {text, rest, "\n"};
  for (char const* const piece : pieces) {
    u32 const length = static_cast<u32>(__builtin_strlen(piece));
    if (isWriting()) {
      buffer.append(piece, length, slot);
    } else if (getShape().isOn(tLineShape::kEnabled) && length != 0) {
      slot.send(piece, length);
    }
  }
  clock.end();
}

}  // namespace nOXDIAG100
