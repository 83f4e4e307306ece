#pragma once

// Texts by number.

#include "ntos/types.h"
#include "oxdiagk/api.h"
#include "qelmk/classMacros.h"
#include "qelmk/tObject.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class tStatus2;

// A class that knows the texts behind string ids. Registered under its name
// ("qelmk/classRegistry.h"), it is made, asked and destroyed by a tStringProxyReportable that names
// it, when a report is made.
//
// The conversion is the first operation of the interface on Windows.
class OXDIAG_API iStringIDToWideStringConverter : public virtual nQELM100::tObject {
  QELM_DECLARE_INTERFACE(iStringIDToWideStringConverter, nQELM100::tObject)

 public:
  // The text of a string id.
  virtual _STL::wstring convert(i32 stringID, tStatus2& status) const = 0;
};

}  // namespace nOXDIAG100
