#pragma once

// An ordered list of values that explains a status.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iStatus2Description.h"
#include "stl/string.h"

namespace nOXDIAG100 {

class iReportableTranslator;
class iVariantReportable;
class tStatus2;
class tStatus2DescriptionImplementation;

// Each item pairs a usage type, a number whose meaning is the caller's and the translator's, with a
// reportable, a typed value. Who sets the status needs no words; who renders it brings a
// translator.
//
//     tStatus2Description description(status);
//     description.addHeader(kUsageBadLine, status);
//     description.addNewline(status);
//     description.addReportItem(kUsageSlot, tIntrinsicTypeReportable<u32>(17, status), status);
//     OXDIAG_SET_STATUS_WITH_DESCRIPTION(result, kStatusSlotOutOfRange, description);
//
// Status convention: with an error in `status` on entry an operation does nothing and returns its
// neutral value; a failure is recorded only where no error is held, with the origin "oxdiagk".
// When the list could not be made at construction, every operation with a status records
// kStatusNoImplementation, but readExternal kStatusOutOfMemory.
//
// Memory: the description and the object behind it, which holds the list, come from the status
// heap, so their number is bounded by it; the list itself and the reportables in it come from the
// module's memory (non-paged), so its length is not. Not locked. IRQL <= APC_LEVEL.
class OXDIAG_API tStatus2Description : public iStatus2Description {
  QELM_DECLARE_CLASS(tStatus2Description, nOXDIAG100::iStatus2Description)

 public:
  // The usage type of the items of addNewline. All others are the caller's to give.
  static constexpr i32 kNewlineUsageType = 223;

  // Items behind one that cannot be read that keep their places in the list.
  static constexpr u32 kMostUnreadItems = 1024;

  // An empty list. Without room in the status heap there is none; the second form records
  // kStatusOutOfMemory then. With an error in `status` on entry it makes none either.
  tStatus2Description();
  explicit tStatus2Description(tStatus2& status);
  tStatus2Description(tStatus2Description const&) = delete;
  tStatus2Description& operator=(tStatus2Description const&) = delete;
  ~tStatus2Description() override;

  // Each of these adds one item, or leaves the list as it was. Failures: kStatusOutOfMemory, also
  // when the reportable cannot be cloned; kStatusClassMismatch when its clone is no reportable.
  void addReportItem(i32 usageType, iVariantReportable const& reportable, tStatus2& status);

  // An item with a tTitleReportable: the translator makes a title of its text.
  void addHeader(i32 usageType, tStatus2& status);

  // An item with a tWhiteSpaceReportable, which adds nothing to the text for its usage type.
  void addNewline(tStatus2& status);

  // Before the item at `index`; at the end when there is no such item, which is no failure.
  void insertReportItemAtIndex(u32 index, i32 usageType, iVariantReportable const& reportable,
                               tStatus2& status);

  // Failure: kStatusIndexOutOfRange. Later items move down.
  void removeReportItemAtIndex(u32 index, tStatus2& status);

  // Gives an item another usage type and another reportable, or leaves it as it was. Failures:
  // kStatusIndexOutOfRange, and those of addReportItem.
  void replaceReportItemAtIndex(u32 index, i32 usageType, iVariantReportable const& reportable,
                                tStatus2& status);

  void makeEmpty(tStatus2& status);

  // 0 on failure.
  u32 getNumberOfReportItems(tStatus2& status) const;

  // -1 on failure: kStatusIndexOutOfRange.
  i32 getUsageTypeAtIndex(u32 index, tStatus2& status) const;

  // The item's own reportable, good until the list changes. Null when the item has none, and on
  // failure: kStatusIndexOutOfRange.
  iVariantReportable const* getReportablePtrAtIndex(u32 index, tStatus2& status) const;

  // The registered name of the reportable's class, such as "nOXDIAG100::tTitleReportable"; empty
  // when the item has no reportable. On failure `className` stays: kStatusIndexOutOfRange,
  // kStatusOutOfMemory.
  void getReportableClassNameAtIndex(u32 index, _STL::string& className, tStatus2& status) const;

  // The first item, from `startIndex` on, that has this usage type, or a reportable of exactly this
  // class. Returns 1 with its position in `foundIndex`; returns 0 and leaves `foundIndex` alone
  // when there is none, and on failure. A `startIndex` behind the last item is no failure. Class
  // names are compared byte by byte.
  //
  //     u32 index = 0;
  //     for (u32 start = 0; description.findMatchingUsageType(kUsageSlot, index, status, start) !=
  //     0;
  //          start = index + 1) {
  //       ...
  //     }
  u32 findMatchingUsageType(i32 usageType, u32& foundIndex, tStatus2& status,
                            u32 startIndex = 0) const;
  u32 findMatchingReportable(nQELM100::tClass const& wanted, u32& foundIndex, tStatus2& status,
                             u32 startIndex = 0) const;
  u32 findMatchingReportable(_STL::string const& className, u32& foundIndex, tStatus2& status,
                             u32 startIndex = 0) const;

  // Appends the report to `output`, which is never cleared: for each item the text of its usage
  // type and that of its reportable, and between two items the separator. An item without
  // reportable has no text, but its separator. The title operation of the translator sees the text
  // of its own item only. Ends at the first error, the translator's or kStatusOutOfMemory; what was
  // appended by then stays.
  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const;

  // True when both lists hold equivalent items in the same order. False when either description
  // could not make its list.
  bool operator==(tStatus2Description const& other) const;

  // A new description with clones of all reportables; null with the reason in `status`:
  // kStatusClassMismatch when there is no room for the description, kStatusOutOfMemory when there
  // is none for its content, kStatusNoImplementation.
  nQELM100::iCloneable* clone(i32& status) const override;

  // The form in a stream: the number of items (u32), and each item as tReportItem writes it.
  //
  // Reading keeps the present list when the number cannot be read, and when the reader reports by
  // kStatusNoListFollows that there is no list. Otherwise the present list is gone. The new one
  // grows with the items that are read, so a number that is not true costs no memory:
  //   - when the stream cannot hold as many items, or the list cannot grow, the status is
  //     kStatusOutOfMemory and the list is empty;
  //   - when an item cannot be read, the list holds those before it. The item itself and those
  //     behind it, kMostUnreadItems of them at most and none when memory is exhausted, keep their
  //     places with usage type 0 and no reportable.
  // Without a list to read into, reading is kStatusOutOfMemory, and writing
  // kStatusNoImplementation.
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  bool isUsable(tStatus2& status) const;
  void copyInto(tStatus2Description& copy, i32& status) const;

  tStatus2DescriptionImplementation* implementation;
};

}  // namespace nOXDIAG100
