#pragma once

// A translator that knows signed 64-bit values.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class tStatus2;

// Implemented besides iReportableTranslator, by the same object. Errors, threads and IRQL as there.
//
//     class tTranslator : public iReportableTranslator, public iReportableTranslatorForI64,
//                         public virtual nQELM100::tObject {
//       QELM_DECLARE_CLASS(tTranslator, nOXDIAG100::iReportableTranslatorForI64, nQELM100::tObject)
class OXDIAG_API iReportableTranslatorForI64 {
  QELM_DECLARE_INTERFACE(iReportableTranslatorForI64)

 public:
  virtual ~iReportableTranslatorForI64() = 0;

  // The text of one value.
  virtual _STL::wstring translateI64(i64 const& value, tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
