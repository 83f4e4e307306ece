#pragma once

#include "status.samples"

// The status whose bytes docs/status.md explains, with an origin that is made up.
inline tStatus2 describedSample() {
  tStatus2 status;
  // clang-format off
#line 42 "rack.cpp"
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, -61008);
  // clang-format on
  describeSlot(121, status);
  return status;
}
