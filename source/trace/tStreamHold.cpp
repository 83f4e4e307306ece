#include "trace/tStreamHold.h"

#include "oxdiagk/tTrace.h"
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
  tTrace* stream = tLiveStreams::getFirst();
  while (stream != nullptr && work(*stream)) stream = tLiveStreams::getNext(*stream);
  return stream == nullptr;
}

}  // namespace

tStreamHold::tStreamHold() : bit(holds + 1) {
  holds |= bit;
}

tStreamHold::~tStreamHold() {
  open();
  forEachStream([this](tTrace& stream) {
    if ((stream.lineHolders & bit) != 0) stream.endLine();
    stream.lineHolders &= ~bit;
    return true;
  });
  holds &= ~bit;
}

bool tStreamHold::holdLines(tTrace& stream, tPatience const& patience) {
  if ((stream.lineHolders & bit) != 0) return true;
  tTrace::tLineStart const start = stream.beginLine(patience.getRest());
  if (start == tTrace::kLineIsLocked) stream.lineHolders |= bit;
  return start != tTrace::kLineTimedOut;
}

bool tStreamHold::holdLinesOfUsers(iTraceDestination const& destination,
                                   tPatience const& patience) {
  return forEachStream([&](tTrace& stream) {
    return stream.getDestination() != &destination || holdLines(stream, patience);
  });
}

void tStreamHold::shut(tTrace& stream) {
  stream.slot.shut(bit);
}

void tStreamHold::shutUsers(iTraceDestination const& destination) {
  forEachStream([&](tTrace& stream) {
    if (stream.getDestination() == &destination) shut(stream);
    return true;
  });
}

u32 tStreamHold::awaitNobodyWithin(iTraceDestination const& destination,
                                   tDestinationSlot const* slot, tPatience const& patience) {
  u32 const own = tThreadUtility::getCurrentThreadId();
  u32 within = tTextsOnTheWay::findOther(own, destination, slot);
  while (within != 0 && !patience.isOver()) {
    tPatience::pause();
    within = tTextsOnTheWay::findOther(own, destination, slot);
  }
  return within;
}

void tStreamHold::open() {
  forEachStream([this](tTrace& stream) {
    stream.slot.open(bit);
    return true;
  });
}

}  // namespace nOXDIAG100
