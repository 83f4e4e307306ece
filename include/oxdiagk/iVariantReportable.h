#pragma once

// A value that explains a status, of a type of its own.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/iCloneableExternalizable.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class iReportableTranslator;
class tStatus2;

// A reportable holds values and knows no words: when a report is made, it hands each value to the
// caller's translator and joins the answers. Reportables are cloned into descriptions
// (tStatus2Description), so those of a caller may stand on the stack.
//
// Status convention: with an error in `status` on entry an operation does nothing and returns a
// neutral value; a failure is recorded only where no error is held. Not locked. IRQL <= APC_LEVEL.
class OXDIAG_API iVariantReportable : public virtual nQELM100::iCloneableExternalizable {
  QELM_DECLARE_INTERFACE(iVariantReportable, nQELM100::iCloneableExternalizable)

 public:
  // Appends the text of this value to `output`, which is never cleared. Failures:
  // kStatusOutOfMemory when the text cannot grow; what was appended before stays.
  virtual void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                              tStatus2& status) const = 0;

  // 1 when `other` is of the same class and holds equal values in the same order, else 0.
  virtual u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
