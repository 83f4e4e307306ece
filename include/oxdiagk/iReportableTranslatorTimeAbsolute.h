#pragma once

// A translator that knows points in time.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "stl/string.h"
#include "vexk/tSSTimeAbsolute.h"

namespace nOXDIAG100 {

class tStatus2;

// Implemented besides iReportableTranslator, by the same object. Without it times have no text.
// Errors, threads and IRQL as there.
//
//     class tTranslator : public iReportableTranslator, public iReportableTranslatorTimeAbsolute,
//                         public virtual nQELM100::tObject {
//       QELM_DECLARE_CLASS(tTranslator, nOXDIAG100::iReportableTranslatorTimeAbsolute,
//       nQELM100::tObject)
class OXDIAG_API iReportableTranslatorTimeAbsolute {
  QELM_DECLARE_INTERFACE(iReportableTranslatorTimeAbsolute)

 public:
  virtual ~iReportableTranslatorTimeAbsolute() = 0;

  // The text of one time.
  virtual _STL::wstring translateTimeAbsolute(tSSTimeAbsolute const& value,
                                              tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
