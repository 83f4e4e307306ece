#pragma once

// Points in time.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "stl/single_vector.h"
#include "vexk/tSSTimeAbsolute.h"

namespace nOXDIAG100 {

// One point in time or several that a status is about.
//
//     tSSTimeAbsoluteReportable const moment(tSSTimeAbsolute::now(), status);
//
// Times have a text only when the translator is an iReportableTranslatorTimeAbsolute too. For
// another one they give nothing at all, and an empty list its words for a list without values.
//
// The order of the values is kept, and so are equal ones. Not locked; values come from long-lived
// memory. IRQL <= APC_LEVEL.
class OXDIAG_API tSSTimeAbsoluteReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tSSTimeAbsoluteReportable, iVariantReportable)

 public:
  // Without values.
  tSSTimeAbsoluteReportable() = default;

  // The same; leaves `status` alone.
  explicit tSSTimeAbsoluteReportable(tStatus2& status);

  // One time, or a copy of a list. With an error in `status` on entry the object stays empty; a
  // list that cannot be allocated leaves it empty and records kStatusOutOfMemory.
  tSSTimeAbsoluteReportable(tSSTimeAbsolute const& time, tStatus2& status);
  tSSTimeAbsoluteReportable(_STL::vector<tSSTimeAbsolute> const& values, tStatus2& status);

  // hasFailed tells whether the copy could be made. A failed copy is empty; a failed assignment
  // leaves the old content.
  tSSTimeAbsoluteReportable(tSSTimeAbsoluteReportable const& other) = default;
  tSSTimeAbsoluteReportable& operator=(tSSTimeAbsoluteReportable const& other) = default;

  // True when memory ran out for values of this object, until others are read from a stream.
  bool hasFailed() const { return times.hasFailed(); }

  // The times; good as long as this object lives and is not changed. Leaves `status` alone.
  _STL::vector<tSSTimeAbsolute> const& getAbsoluteTimes(tStatus2& status) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;

  // In a stream: the count (u32), the four words of each time from the highest to the lowest (u32).
  // A read that fails leaves the old values.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  _STL::single_vector<tSSTimeAbsolute> times;
};

}  // namespace nOXDIAG100
