#pragma once

// A translator that has words for a list without values.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class tStatus2;

// Implemented besides iReportableTranslator, by the same object. Errors, threads and IRQL as there.
//
//     class tTranslator : public iReportableTranslator, public
//     iReportableTranslatorForEmptyContainers,
//                         public virtual nQELM100::tObject {
//       QELM_DECLARE_CLASS(tTranslator, nOXDIAG100::iReportableTranslatorForEmptyContainers,
//       nQELM100::tObject)
class OXDIAG_API iReportableTranslatorForEmptyContainers {
  QELM_DECLARE_INTERFACE(iReportableTranslatorForEmptyContainers)

 public:
  virtual ~iReportableTranslatorForEmptyContainers() = 0;

  // What stands in place of the values.
  virtual _STL::wstring translateEmptyContainer(tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
