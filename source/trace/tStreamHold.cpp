#include "trace/tStreamHold.h"

#include "oxdiagk/tTraceParts.h"
#include "trace/tLiveStreams.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

// The bits of the holds that are alive. Streams remember by them who holds what.
constinit u32 holds = 0;

// Calls `work` for one stream after the other while it returns true. Returns its last answer.
template <class Work>
bool forEachStream(Work work) {
  tTraceParts* stream = tLiveStreams::getFirst();
  while (stream != nullptr && work(*stream)) stream = tLiveStreams::getNext(*stream);
  return stream == nullptr;
}

}  // namespace

tStreamHold::tStreamHold() : bit(holds + 1) {
  holds |= bit;
}

tStreamHold::~tStreamHold() {
  open();
  forEachStream([this](tTraceParts& stream) {
    if ((stream.lock.holders & bit) != 0) stream.lock.end();
    stream.lock.holders &= ~bit;
    return true;
  });
  holds &= ~bit;
}

bool tStreamHold::holdLines(tTraceParts& stream, tPatience const& patience) {
  if ((stream.lock.holders & bit) != 0) return true;
  if (!stream.getShape().isOn(tLineShape::kMutex)) return true;
  u32 const owner = tLiveStreams::findLineOwner(stream);
  tLineLock::tStart const start = stream.lock.begin(patience.getRest());
  if (start == tLineLock::kLocked) stream.lock.holders |= bit;
  if (start != tLineLock::kTimedOut) return true;
  lineOwner = owner == tLiveStreams::findLineOwner(stream) ? owner : 0;
  return false;
}

bool tStreamHold::holdLinesOfUsers(iTraceDestination const& destination,
                                   tPatience const& patience) {
  return forEachStream([&](tTraceParts& stream) {
    return stream.slot.get() != &destination || holdLines(stream, patience);
  });
}

void tStreamHold::shut(tTraceParts& stream) {
  stream.slot.shut(bit);
}

void tStreamHold::shutUsers(iTraceDestination const& destination) {
  forEachStream([&](tTraceParts& stream) {
    if (stream.slot.get() == &destination) shut(stream);
    return true;
  });
}

u32 tStreamHold::awaitNobodyWithin(iTraceDestination const& destination,
                                   tDestinationSlot const* slot, tPatience const& patience) {
  u32 const own = tThreadUtility::getCurrentThreadId();
  u32 within = tTextsOnTheWay::findOther(own, destination, slot);
  while (within != 0 && !patience.isOver()) {
    patience.wait();
    within = tTextsOnTheWay::findOther(own, destination, slot);
  }
  return within;
}

void tStreamHold::open() {
  forEachStream([this](tTraceParts& stream) {
    stream.slot.open(bit);
    return true;
  });
}

}  // namespace nOXDIAG100
