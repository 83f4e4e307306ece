#pragma once

// What a report item holds, without the face of an object of the framework.

#include "compiler/types.h"
#include "oxdiagk/api.h"

namespace nQELM100 {
class iObjectReader;
class iObjectWriter;
}  // namespace nQELM100

namespace nOXDIAG100 {

class iVariantReportable;
class tStatus2;

// A usage type, and a clone of a reportable that belongs to this object; tReportItem says what the
// operations do. A description keeps these side by side: an item takes 8 bytes of a stream at
// least, so a list of larger elements would take many times what was read for it.
//
// Reportables come from the module's memory. Not locked. IRQL <= APC_LEVEL.
class OXDIAG_API tReportItemContent {
 public:
  constexpr tReportItemContent() = default;
  tReportItemContent(i32 itemUsageType, iVariantReportable const& value, tStatus2& status);
  tReportItemContent(tReportItemContent const& other) noexcept;
  tReportItemContent(tReportItemContent&& other) noexcept;
  ~tReportItemContent();
  tReportItemContent& operator=(tReportItemContent const& other) noexcept;
  tReportItemContent& operator=(tReportItemContent&& other) noexcept;

  i32 getUsageType() const { return usageType; }
  iVariantReportable const* getReportable() const { return reportable; }
  bool hasFailed() const { return failed; }

  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const;
  void readExternal(nQELM100::iObjectReader& reader, i32& status);

 private:
  void exchange(tReportItemContent& other) noexcept;

  i32 usageType = 0;
  bool failed = false;
  iVariantReportable* reportable = nullptr;  // owned
};
static_assert(sizeof(tReportItemContent) == 16, "twice what it takes of a stream");

}  // namespace nOXDIAG100
