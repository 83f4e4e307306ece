#include "trace/tTraceFilterShortForm.h"

#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceFilterLine.h"
#include "trace/tTraceFilterTerm.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kGreatest = 0xFFFFFFFF;

}  // namespace

tTraceFilterShortForm::tTraceFilterShortForm(tTraceFilterTerm const* first, bool isOnlyOne)
    : word(first == nullptr ? kEmpty : kNone) {
  if (first == nullptr || !isOnlyOne) return;
  if (first->getOperator() == tTraceFilterTerm::kNoOperator) return;
  bool const isVerbosity = first->getField() == tTraceFilter::kVerbosity;
  if (!isVerbosity && first->getField() != tTraceFilter::kLineNumber) return;
  word = (isVerbosity ? kVerbosityTerm : kLineNumberTerm) |
         static_cast<u64>(first->getOperator()) << kOperationShift |
         static_cast<u64>(first->getNumber()) << kNumberShift;
}

bool tTraceFilterShortForm::evaluate(tTraceFilterLine const& line) const {
  u32 const kind = static_cast<u32>(word) & kKindMask;
  if (kind == kEmpty) return true;
  i32 const operation = static_cast<i32>(static_cast<u32>(word) >> kOperationShift);
  u32 const value = kind == kVerbosityTerm ? line.verbosity : line.line;
  return tTraceFilterTerm::isSatisfied(operation, value, static_cast<u32>(word >> kNumberShift));
}

u64 tTraceFilterShortForm::getShownRange() const {
  if ((word & kKindMask) != kVerbosityTerm) return kNoRange;
  i32 const operation = static_cast<i32>(static_cast<u32>(word) >> kOperationShift);
  u32 const number = static_cast<u32>(word >> kNumberShift);
  bool const showsLess = tTraceFilterTerm::isSatisfied(operation, 0, 1);
  bool const showsEqual = tTraceFilterTerm::isSatisfied(operation, 1, 1);
  bool const showsGreater = tTraceFilterTerm::isSatisfied(operation, 1, 0);
  // Greater ones and lesser ones are one range, since behind the greatest number comes 0.
  u64 const greater = showsGreater ? kGreatest - number : 0;
  u64 const less = showsLess ? number : 0;
  u64 const count = greater + less + (showsEqual ? 1 : 0);
  if (count == 0) return kNoRange;
  bool const beginsAtNumber = showsEqual && !showsLess;
  u32 const first = beginsAtNumber ? number : showsGreater ? number + 1 : 0;
  return (count - 1) << kNumberShift | first;
}

}  // namespace nOXDIAG100
