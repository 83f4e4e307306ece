#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class tTraceFilterTerm;
class tTraceFilterLine;

// A filter in one word: the empty one, and one of a single term about verbosity or line number, as
// most are. A line is judged by the word alone, so it needs no list that somebody may be changing.
class tTraceFilterShortForm {
 public:
  // The word of an empty filter.
  static constexpr u64 kEmpty = 1;

  // Of a list that begins with `first`, null when it is empty, and has no other term if
  // `isOnlyOne`.
  tTraceFilterShortForm(tTraceFilterTerm const* first, bool isOnlyOne);

  explicit tTraceFilterShortForm(u64 word) : word(word) {}
  u64 getWord() const { return word; }

  // False when the terms of the list must be asked.
  bool isWhole() const { return word != kNone; }

  // The range of verbosities that are shown, of a form that is one term on the verbosity: the first
  // in the lower half, and how many follow it in the upper one, beyond the greatest number from 0
  // on. kNoRange when the form is not that, or shows nothing.
  static constexpr u64 kNoRange = ~0ull;
  u64 getShownRange() const;

  // Whether the line is shown; only of a form that is whole.
  bool evaluate(tTraceFilterLine const& line) const;

 private:
  static constexpr u64 kNone = 0;
  static constexpr u64 kVerbosityTerm = 2;
  static constexpr u64 kLineNumberTerm = 3;
  static constexpr u32 kKindMask = 0xFF;
  static constexpr u32 kOperationShift = 8;
  static constexpr u32 kNumberShift = 32;

  u64 word;
};

}  // namespace nOXDIAG100
