#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class iTraceDestination;
class tTraceParts;

// All trace streams that are built, and who of them uses which destination. Under the streams'
// lock.
class tLiveStreams {
 public:
  static void add(tTraceParts& stream);
  static void remove(tTraceParts& stream);

  // In the order of the list; null at its end.
  static tTraceParts* getFirst();
  static tTraceParts* getNext(tTraceParts const& stream);

  // The first stream that uses the destination, but for `besides`; null when there is none.
  static tTraceParts* findUser(iTraceDestination const& destination,
                               tTraceParts const* besides = nullptr);

  // The same, of streams that have not closed it to go to another one: for them it is open.
  static tTraceParts* findKeeper(iTraceDestination const& destination,
                                 tTraceParts const* besides = nullptr);

  // The thread that has locked a line of this stream, or of one that shares its lock; 0 when none
  // of the streams knows one.
  static u32 findLineOwner(tTraceParts const& stream);
};

}  // namespace nOXDIAG100
