#pragma once

// Values of a property that has named values.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "stl/single_vector.h"

namespace nOXDIAG100 {

// One value or several of one property.
//
//     tEnumPropertyReportable const wrong(kPropertyRange, kRange10Volts, status);
//
// In a report each value has the text of translateEnumValue. A value without text is left out as
// in tPropertyIDReportable.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
class OXDIAG_API tEnumPropertyReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tEnumPropertyReportable, iVariantReportable)

 public:
  // Without values.
  tEnumPropertyReportable() = default;

  // The same; leaves `status` alone.
  explicit tEnumPropertyReportable(tStatus2& status);

  // One value, or a copy of a list. With an error in `status` on entry the object stays empty; a
  // list that cannot be allocated leaves it empty and records kStatusOutOfMemory.
  tEnumPropertyReportable(i32 id, i32 value, tStatus2& status);
  tEnumPropertyReportable(i32 id, _STL::vector<i32> const& propertyValues, tStatus2& status);

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tEnumPropertyReportable(tEnumPropertyReportable const& other);
  tEnumPropertyReportable& operator=(tEnumPropertyReportable const& other);

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return values.hasFailed(); }

  // The property, also when there are no values of it; 0 when none was given, and in an object that
  // could not be made. Leaves `status` alone.
  i32 const& getPropertyID(tStatus2& status) const;

  // Its values; good as long as this object lives and is not changed. Leaves `status` alone.
  _STL::vector<i32> const& getPropertyValues(tStatus2& status) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;

  // In a stream: the property (i32), the count (u32), each value (i32). A read that fails leaves
  // the old values.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  i32 propertyID = 0;
  _STL::single_vector<i32> values;
};

}  // namespace nOXDIAG100
