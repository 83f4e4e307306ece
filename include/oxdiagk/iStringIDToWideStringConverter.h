#pragma once

// Texts by number.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/tObject.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class tStatus2;

// A class that knows the texts behind string ids. It is registered under its name
// ("qelmk/classRegistry.h"). A tStringProxyReportable that names it makes one object of it for each
// report, asks that for the text of each id, and destroys it through its class when the report is
// made. So an object is used by one thread only; what objects share, the class locks. All of this
// happens on the thread and at the IRQL of the report, <= APC_LEVEL.
//
// The conversion is the first operation of the interface on Windows.
class OXDIAG_API iStringIDToWideStringConverter : public virtual nQELM100::tObject {
  QELM_DECLARE_INTERFACE(iStringIDToWideStringConverter, nQELM100::tObject)

 public:
  // The text of a string id. A failure is stored in `status` and ends the report: neither this text
  // nor those of later ids are appended. A text whose hasFailed is true is kStatusOutOfMemory.
  // Never called with an error in `status`.
  virtual _STL::wstring convert(i32 stringID, tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
