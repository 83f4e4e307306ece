#pragma once

namespace nSLOTBUS100 {

class tRack;

// Who is given a rack that was read.
class iRackTaker {
 public:
  // The rack goes when this returns. PASSIVE_LEVEL.
  virtual void take(tRack const& rack) = 0;

 protected:
  ~iRackTaker() = default;
};

}  // namespace nSLOTBUS100
