#pragma once

// Identifiers.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "qelmk/tGUID.h"
#include "stl/single_vector.h"

namespace nOXDIAG100 {

// One identifier or several that a status is about.
//
//     tGUIDReportable const bus(kRackBus, status);
//
// In a report each has the text of translateGUID.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
class OXDIAG_API tGUIDReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tGUIDReportable, iVariantReportable)

 public:
  // Without values.
  tGUIDReportable() = default;

  // The same; leaves `status` alone.
  explicit tGUIDReportable(tStatus2& status);

  // One identifier, or a copy of a list. With an error in `status` on entry the object stays empty;
  // a list that cannot be allocated leaves it empty and records kStatusOutOfMemory.
  tGUIDReportable(nQELM100::tGUID const& guid, tStatus2& status);
  tGUIDReportable(_STL::vector<nQELM100::tGUID> const& values, tStatus2& status);

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tGUIDReportable(tGUIDReportable const& other) = default;
  tGUIDReportable& operator=(tGUIDReportable const& other) = default;

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return guids.hasFailed(); }

  // The identifiers; good as long as this object lives and is not changed. Leaves `status` alone.
  _STL::vector<nQELM100::tGUID> const& getGUIDs(tStatus2& status) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;

  // In a stream: the count (u32), each identifier in its own form. A read that fails leaves the old
  // values.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  _STL::single_vector<nQELM100::tGUID> guids;
};

}  // namespace nOXDIAG100
