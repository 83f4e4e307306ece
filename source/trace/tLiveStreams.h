#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tTrace;

// All trace streams that are built, and who of them uses which destination. Under the streams'
// lock.
class tLiveStreams {
 public:
  static void add(tTrace& stream);
  static void remove(tTrace& stream);

  // In the order of the list; null at its end.
  static tTrace* getFirst();
  static tTrace* getNext(tTrace const& stream);

  // The first stream that uses the destination, but for `besides`; null when there is none.
  static tTrace* findUser(iTraceDestination const& destination, tTrace const* besides = nullptr);

  // The thread that has locked a line; 0 when none of the streams knows one.
  static u32 findLineOwner();
};

}  // namespace nOXDIAG100
