#include "trace/tLiveStreams.h"

#include "oxdiagk/tTraceParts.h"

namespace nOXDIAG100 {
namespace {

constinit tTraceParts* first = nullptr;

}  // namespace

void tLiveStreams::add(tTraceParts& stream) {
  stream.nextStream = first;
  first = &stream;
}

void tLiveStreams::remove(tTraceParts& stream) {
  tTraceParts** place = &first;
  while (*place != &stream) place = &(*place)->nextStream;
  *place = stream.nextStream;
}

tTraceParts* tLiveStreams::getFirst() {
  return first;
}

tTraceParts* tLiveStreams::getNext(tTraceParts const& stream) {
  return stream.nextStream;
}

tTraceParts* tLiveStreams::findUser(iTraceDestination const& destination,
                                    tTraceParts const* besides) {
  for (tTraceParts* stream = first; stream != nullptr; stream = stream->nextStream) {
    if (stream != besides && stream->slot.get() == &destination) return stream;
  }
  return nullptr;
}

tTraceParts* tLiveStreams::findKeeper(iTraceDestination const& destination,
                                      tTraceParts const* besides) {
  for (tTraceParts* stream = first; stream != nullptr; stream = stream->nextStream) {
    bool const isKept = stream->slot.get() == &destination && !stream->slot.isLeft;
    if (stream != besides && isKept) return stream;
  }
  return nullptr;
}

u32 tLiveStreams::findLineOwner(tTraceParts const& stream) {
  for (tTraceParts* each = first; each != nullptr; each = each->nextStream) {
    u32 const owner = each->lock.isSharedWith(stream.lock) ? each->lock.getOwner() : 0;
    if (owner != 0) return owner;
  }
  return 0;
}

}  // namespace nOXDIAG100
