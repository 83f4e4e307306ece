#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

// How many lines of one place are shown: a writable static of the macros with a limit in
// "oxdiagk/traceMacros.h", 16 bytes that begin as zeros and need no end.
//
// Only lines count that would be shown otherwise: a limit is asked last, behind the master switch
// and the filter. The lines of all streams that a place writes to count together.
//
// Thread safety: any number of threads may ask at once; nothing waits, nothing is allocated. IRQL:
// any.
class OXDIAG_API tLineLimit {
 public:
  enum tRule : u32 {
    kOnce,          // the first line
    kEveryNth,      // the first, and every n-th behind it; 1 is every line, 0 none
    kAtMostASecond  // n within a second, the first one of which begins it; 0 is none
  };

  constexpr tLineLimit() = default;

  tLineLimit(tLineLimit const&) = delete;
  tLineLimit& operator=(tLineLimit const&) = delete;

  // Whether the line that asks is shown. `leftOut`: stays as it is, or gets the number of lines
  // that the rule of a second has left out since it was last told.
  bool admit(tRule rule, u32 n, u32& leftOut);

  // The rule of a second, at a time in milliseconds that wraps around. A clock that goes back by a
  // second begins another, and so do kPatience lines that were left out, should it stand still.
  bool admitAt(u32 milliseconds, u32 n, u32& leftOut);

  static constexpr u32 kPatience = 0x100000;

 private:
  bool admitFirst();
  bool admitNth(u32 n);

  // Of kOnce 1 behind the first line; of kEveryNth how many lines there were; of kAtMostASecond
  // when the second began, and in the low half how many lines there were in it.
  u64 state = 0;
  u32 leftOutCount = 0;
};
static_assert(sizeof(tLineLimit) == 16);

}  // namespace nOXDIAG100
