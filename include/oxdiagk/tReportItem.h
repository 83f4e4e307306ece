#pragma once

// One line of a description: a value, and what it means.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/tReportItemContent.h"
#include "qelmk/classMacros.h"
#include "qelmk/iCloneableExternalizable.h"

namespace nOXDIAG100 {

class iVariantReportable;
class tStatus2;

// The usage type is a number of the caller's that the translator of the report knows. The
// reportable is a clone that the item owns; every copy of the item clones it again. An item has no
// reportable when it was made without, or read from a stream so.
//
// Items, and their reportables, come from the module's memory. Not locked. IRQL <= APC_LEVEL.
class OXDIAG_API tReportItem : public virtual nQELM100::iCloneableExternalizable {
  QELM_DECLARE_CLASS(tReportItem, nQELM100::iCloneableExternalizable)

 public:
  // Usage type 0, no reportable.
  tReportItem() = default;

  // Holds a clone of `value`. Without one the item has no reportable, and `status` tells why:
  // kStatusOutOfMemory, or kStatusClassMismatch when the clone is no reportable. An error in
  // `status` on entry is kept, and nothing is cloned.
  tReportItem(i32 itemUsageType, iVariantReportable const& value, tStatus2& status);

  // Clones the reportable; hasFailed tells whether this copy could be made. A copy that could not
  // be made has no reportable.
  tReportItem(tReportItem const& other) noexcept;

  // Takes the reportable; `other` is left without one.
  tReportItem(tReportItem&& other) noexcept;

  ~tReportItem() override;

  // Clones the reportable, or keeps the old content and remembers the failure.
  tReportItem& operator=(tReportItem const& other) noexcept;
  tReportItem& operator=(tReportItem&& other) noexcept;

  i32 getUsageType() const { return content.getUsageType(); }

  // The item's own; null when it has none.
  iVariantReportable const* getReportable() const { return content.getReportable(); }

  // True when the reportable of another item could not be cloned into this one. A vector asks.
  bool hasFailed() const { return content.hasFailed(); }

  // A new item with a clone of the reportable; null with the reason in `status`:
  // kStatusClassMismatch when there is no memory for the item, kStatusOutOfMemory when the
  // reportable cannot be cloned.
  nQELM100::iCloneable* clone(i32& status) const override;

  // The form in a stream: the usage type (i32); 1 when a reportable follows, else 0 (u32); the
  // reportable as an object of the framework. A read that fails leaves the item alone; an object
  // that is no reportable, or none where one is promised, is kStatusClassMismatch.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  tReportItemContent content;
};

}  // namespace nOXDIAG100
