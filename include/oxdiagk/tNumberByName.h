#pragma once

#include "oxdiagk/iTraceable.h"

namespace nOXDIAG100 {

// A number of the kernel that writes itself with its name: STATUS_INVALID_HANDLE (0xC0000008). What
// the functions of "oxdiagk/kernelValues.h" return.
//
// A plain value: copied freely. The names lie in read-only, non-paged memory of the library, about
// 70 KiB, and are found in logarithmic time. Allocates nothing; any thread, any IRQL.
class OXDIAG_API tNumberByName final : public iTraceable {
 public:
  enum tKind : u32 {
    kStatus,
    kIrpMajor,
    kIrpMinor,  // `number`: the major code in the second byte, the minor code in the first
    kIrql,
    kDevicePower,
    kSystemPower
  };

  tNumberByName(tKind kind, u32 number);

  // The name alone, of static storage; null when the library knows none.
  char const* getName() const;

  void put(tTrace& trace) const override;

 private:
  char* writeNumber(char* to) const;
  void putUnnamed(tTrace& trace) const;

  tKind kind;
  u32 number;
};

}  // namespace nOXDIAG100
