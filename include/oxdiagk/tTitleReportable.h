#pragma once

// The heading of a report.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"

namespace nOXDIAG100 {

// The whole report is what the translator's title operation makes of the output: there are no
// values.
//
// A marker: equivalent to every reportable of its class and to no other, whatever the status holds;
// nothing is written to a stream or read from it. Everything else as iVariantReportable says.
class OXDIAG_API tTitleReportable : public iVariantReportable {
  QELM_DECLARE_CLASS(tTitleReportable, iVariantReportable)

 public:
  tTitleReportable() = default;

  // The same; leaves `status` alone.
  explicit tTitleReportable(tStatus2& status);

  tTitleReportable(tTitleReportable const& other) = default;
  tTitleReportable& operator=(tTitleReportable const& other) = default;

  // Always false: a marker can be copied without memory.
  bool hasFailed() const { return false; }

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const override;
  u32 isEquivalent(iVariantReportable const& other, tStatus2& status) const override;
  nQELM100::iCloneable* clone(i32& status) const override;
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;
};

}  // namespace nOXDIAG100
