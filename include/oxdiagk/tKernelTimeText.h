#pragma once

#include "oxdiagk/iTraceable.h"

namespace nOXDIAG100 {

// A time of the kernel that writes itself, as ISO 8601 has it: 2026-11-22T14:10:38.1234567Z. What
// asKernelTime of "oxdiagk/kernelValues.h" returns.
//
// A plain value: copied freely. Allocates nothing; any thread, any IRQL.
class OXDIAG_API tKernelTimeText final : public iTraceable {
 public:
  // Units of 100 ns since 1 January 1601, 00:00 UTC. A negative number is an interval, as it is in
  // timeouts of the kernel, and written in seconds: -1.5000000 s.
  explicit tKernelTimeText(i64 hundredNanoseconds);

  void put(tTrace& trace) const override;

 private:
  i64 time;
};

}  // namespace nOXDIAG100
