#pragma once

#include "oxdiagview/tRecord.h"

namespace oxdiagview {

// Who wants the records of a trace, one after the other.
class iRecordSink {
 public:
  virtual ~iRecordSink() = default;
  virtual void take(tRecord const& record) = 0;

  // There are no more.
  virtual void finish() {}
};

}  // namespace oxdiagview
