#pragma once

// What is behind a description: its list.

#include "oxdiagk/iStatus2Description.h"
#include "oxdiagk/tReportItemContent.h"
#include "stl/string.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

class iReportableTranslator;

// The operations are those of tStatus2Description and are told there. An object of its own, in the
// status heap, so that a description on a stack is small and one that finds the heap full can say
// so. The list is in the module's memory: the status heap would be full with a hundred items. It
// holds what a tReportItem holds, and none of its tables.
class OXDIAG_API tStatus2DescriptionImplementation
    : public virtual nQELM100::iCloneableExternalizable {
  QELM_DECLARE_CLASS(tStatus2DescriptionImplementation, nQELM100::iCloneableExternalizable)

 public:
  // As those of iStatus2Description.
  static void* operator new(size_t size) noexcept {
    return iStatus2Description::operator new(size);
  }
  static void* operator new(size_t size, tMemAllocationFlags flags, i32* status) noexcept {
    return iStatus2Description::operator new(size, flags, status);
  }
  static void operator delete(void* block) noexcept { iStatus2Description::operator delete(block); }

  // An empty list. `code` is kept: a warning is merged into the status of whoever clones or reads
  // into this object, and with an error nothing is cloned or read into it.
  explicit tStatus2DescriptionImplementation(i32 code = 0) : storedStatus(code) {}
  tStatus2DescriptionImplementation(tStatus2DescriptionImplementation const&) = delete;
  tStatus2DescriptionImplementation& operator=(tStatus2DescriptionImplementation const&) = delete;

  i32 getStoredStatus() const { return storedStatus; }

  // Replaces the list by clones of the items of `other`, or leaves it and stores
  // kStatusOutOfMemory.
  void copyItems(tStatus2DescriptionImplementation const& other, i32& status);

  void insert(u32 index, i32 usageType, iVariantReportable const& reportable, tStatus2& status);
  void add(i32 usageType, iVariantReportable const& reportable, tStatus2& status) {
    insert(getCount(), usageType, reportable, status);
  }
  void remove(u32 index, tStatus2& status);
  void replace(u32 index, i32 usageType, iVariantReportable const& reportable, tStatus2& status);
  void makeEmpty() { items.clear(); }

  u32 getCount() const { return static_cast<u32>(items.size()); }
  i32 getUsageType(u32 index, tStatus2& status) const;
  iVariantReportable const* getReportable(u32 index, tStatus2& status) const;
  void getReportableClassName(u32 index, _STL::string& className, tStatus2& status) const;

  u32 findUsageType(i32 usageType, u32& foundIndex, u32 startIndex) const;
  u32 findClass(nQELM100::tClass const& wanted, u32& foundIndex, u32 startIndex) const;
  u32 findClassName(_STL::string const& className, u32& foundIndex, u32 startIndex) const;

  void generateReport(iReportableTranslator const& translator, _STL::wstring& output,
                      tStatus2& status) const;
  bool isEquivalent(tStatus2DescriptionImplementation const& other) const;

  nQELM100::iCloneable* clone(i32& status) const override;
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

 private:
  bool isInRange(u32 index, tStatus2& status) const;
  void readItems(u32 count, nQELM100::iObjectReader& reader, i32& status);
  void keepPlaces(u32 count);

  template <class Matches>
  u32 find(u32& foundIndex, u32 startIndex, Matches matches) const;

  i32 storedStatus;
  _STL::vector<tReportItemContent> items;
};

}  // namespace nOXDIAG100
