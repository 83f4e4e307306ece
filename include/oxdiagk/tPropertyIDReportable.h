#pragma once

// Properties, by their ids.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "stl/single_vector.h"

namespace nOXDIAG100 {

// One property or several that a status is about.
//
//     tPropertyIDReportable const properties(kPropertySlot, status);
//
// In a report each id has the text of translatePropertyID. An id without text is left out, and its
// separator with it: the ids A, B of which B has no text give "A" and the separator behind A; when
// none has a text nothing is appended at all, not even the list prefix.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
class OXDIAG_API tPropertyIDReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tPropertyIDReportable, iVariantReportable)

 public:
  // Without values.
  tPropertyIDReportable() = default;

  // The same; leaves `status` alone.
  explicit tPropertyIDReportable(tStatus2& status);

  // One id, or a copy of a list. With an error in `status` on entry the object stays empty; a list
  // that cannot be allocated leaves it empty and records kStatusOutOfMemory.
  tPropertyIDReportable(i32 id, tStatus2& status);
  tPropertyIDReportable(_STL::vector<i32> const& propertyIDs, tStatus2& status);

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tPropertyIDReportable(tPropertyIDReportable const& other) = default;
  tPropertyIDReportable& operator=(tPropertyIDReportable const& other) = default;

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return ids.hasFailed(); }

  // The ids; good as long as this object lives and is not changed. Leaves `status` alone.
  _STL::vector<i32> const& getData(tStatus2& status) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;

  // In a stream: the count (u32), each id (i32). A read that fails leaves the old values.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  _STL::single_vector<i32> ids;
};

}  // namespace nOXDIAG100
