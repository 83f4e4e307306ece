#pragma once

#include "oxdiagk/tRecorderRing.h"

namespace nOXDIAG100 {

// Makes an empty ring of the memory at `ring`, which takes `capacity` bytes of text behind it.
inline void beginRing(tRecorderRing& ring, u64 capacity) {
  __builtin_memcpy(ring.signature, tRecorderRing::kSignature, sizeof(ring.signature));
  ring.headSize = sizeof(ring);
  ring.layout = tRecorderRing::kLayout;
  ring.capacity = capacity;
  ring.inverse = ~capacity;
  ring.written = 0;
  ring.address = reinterpret_cast<u64>(&ring);
}

}  // namespace nOXDIAG100
