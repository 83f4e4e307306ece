#pragma once

// A value for tests of what owns reportables, and a description full of them.

#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/tStatus2Description.h"

// A reportable with one number. It counts who lives; its cloning and its report can be made to go
// wrong.
class tTestReportable : public nOXDIAG100::iVariantReportable {
  QELM_DECLARE_CLASS(tTestReportable, nOXDIAG100::iVariantReportable)

 public:
  static constexpr i32 kStatusCloneFailed = -77201;
  static constexpr i32 kStatusReportFailed = -77202;
  static constexpr i32 kStatusComparisonFailed = -77203;

  enum tBehaviour : u32 {
    kWorking,
    kCloneFails,          // the clone is null, with kStatusCloneFailed
    kCloneFailsSilently,  // the clone is null, without a status
    kCloneIsForeign,      // the clone is no reportable
    kCloneWarns,          // the clone comes with a warning
    kReportFails,         // the report is kStatusReportFailed behind the number
    kReportIsCut,         // the report remembers exhausted memory
    kComparisonFails,     // kStatusComparisonFailed, and not equivalent
  };

  // In every object of the class and of those derived from it.
  static i32 living;
  static tBehaviour behaviour;

  explicit tTestReportable(i32 content = 0) : number(content) { ++living; }
  tTestReportable(tTestReportable const& other);
  ~tTestReportable() override { --living; }
  tTestReportable& operator=(tTestReportable const&) = delete;

  // The translator's text of the number.
  void generateReport(nOXDIAG100::iReportableTranslator const& translator, _STL::wstring& output,
                      nOXDIAG100::tStatus2& status) const override;
  u32 isEquivalent(nOXDIAG100::iVariantReportable const& other,
                   nOXDIAG100::tStatus2& status) const override;

  nQELM100::iCloneable* clone(i32& status) const override;
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

  i32 number;
};

// Another class with the same content.
class tOtherReportable : public tTestReportable {
  QELM_DECLARE_CLASS(tOtherReportable, tTestReportable)

 public:
  explicit tOtherReportable(i32 content = 0) : tTestReportable(content) {}

  nQELM100::iCloneable* clone(i32& status) const override;
};

// The number of a test reportable; -1 when it is none.
i32 numberOf(nOXDIAG100::iVariantReportable const* reportable);

// Makes reportables behave in another way for the length of a test.
class tBehaviourScope {
 public:
  explicit tBehaviourScope(tTestReportable::tBehaviour way) { tTestReportable::behaviour = way; }
  ~tBehaviourScope() { tTestReportable::behaviour = tTestReportable::kWorking; }
  tBehaviourScope(tBehaviourScope const&) = delete;
  tBehaviourScope& operator=(tBehaviourScope const&) = delete;
};

// Adds items with the usage types 10, 20, 30 ... and the numbers 1, 2, 3 ..., and returns the code.
i32 addItems(nOXDIAG100::tStatus2Description& description, u32 count);

// The numbers of the items, in order, as decimal digits: 1231 for the numbers 1, 2, 3, 1; an item
// without a test reportable is a 0. A description that cannot tell is -1.
i32 numbersIn(nOXDIAG100::tStatus2Description const& description);
