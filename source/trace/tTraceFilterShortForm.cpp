#include "trace/tTraceFilterShortForm.h"

#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceFilterLine.h"
#include "trace/tTraceFilterTerm.h"

namespace nOXDIAG100 {

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

}  // namespace nOXDIAG100
