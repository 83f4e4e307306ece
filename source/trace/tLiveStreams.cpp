#include "trace/tLiveStreams.h"

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

constinit tTrace* first = nullptr;

}  // namespace

void tLiveStreams::add(tTrace& stream) {
  stream.nextStream = first;
  first = &stream;
}

void tLiveStreams::remove(tTrace& stream) {
  tTrace** place = &first;
  while (*place != nullptr && *place != &stream) place = &(*place)->nextStream;
  if (*place != nullptr) *place = stream.nextStream;
}

tTrace* tLiveStreams::getFirst() {
  return first;
}

tTrace* tLiveStreams::getNext(tTrace const& stream) {
  return stream.nextStream;
}

tTrace* tLiveStreams::findUser(iTraceDestination const& destination, tTrace const* besides) {
  for (tTrace* stream = first; stream != nullptr; stream = stream->nextStream) {
    if (stream != besides && stream->getDestination() == &destination) return stream;
  }
  return nullptr;
}

u32 tLiveStreams::findLineOwner() {
  u32 owner = 0;
  for (tTrace* stream = first; stream != nullptr && owner == 0; stream = stream->nextStream) {
    owner = stream->getLineOwner();
  }
  return owner;
}

}  // namespace nOXDIAG100
