#include "trace/tPutWatch.h"

#include "trace/tTextsOnTheWay.h"

namespace nOXDIAG100 {

void tPutWatch::look(u32 thread) {
  u32 const found = tTextsOnTheWay::isWithin(thread, nullptr) ? thread : 0;
  if (found == stuck) return patience.addWait(kBetweenLooks);
  stuck = found;
  patience = tPatience();
}

}  // namespace nOXDIAG100
