#pragma once

#include "slotbus/component/iRackTaker.h"

namespace nSLOTBUS100 {

// Where a bus has its rack from. What surrounds the component provides it: a file that the command
// line names, or one that the service key does.
class iRackSource {
 public:
  // Finds the text, has it read by readRackText of "slotbus.h" and passes `taker` on to that. What
  // cannot be found is traced. PASSIVE_LEVEL.
  virtual void read(iRackTaker& taker) = 0;

 protected:
  ~iRackSource() = default;
};

}  // namespace nSLOTBUS100
