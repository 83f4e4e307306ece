#include "status/tStatus2DescriptionImplementation.h"

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/iVariantReportable.h"
#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/ownedObjects.h"

#define OXDIAG_STATUS_FILE "source/status/tStatus2DescriptionImplementation"
#include "status/libraryStatus.h"

QELM_DEFINE_CLASS(nOXDIAG100::tStatus2DescriptionImplementation,
                  "nOXDIAG100::tStatus2DescriptionImplementation")

namespace nOXDIAG100 {
namespace {

// In a stream an item is at least a usage type and a flag.
constexpr u64 kFewestStreamItems = 2;

nQELM100::tClass classOf(iVariantReportable const& reportable) {
  i32 status = 0;
  return reportable.getClass(status);
}

// A text of the translator's.
void append(_STL::wstring& output, _STL::wstring const& text, tStatus2& status) {
  if (text.hasFailed() || !output.append(text)) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
}

// Begins with an empty text, so that a title is one of this item only; `text` keeps its memory from
// item to item. What there is of it when something fails is shown all the same: it is the end of
// the report.
void reportItem(tReportItemContent const& item, iReportableTranslator const& translator,
                _STL::wstring& text, _STL::wstring& output, tStatus2& status) {
  if (item.getReportable() == nullptr) return;
  text.clear();
  append(text, translator.translateUsageType(item.getUsageType(), status), status);
  item.getReportable()->generateReport(translator, text, status);
  if (!output.append(text) || text.hasFailed()) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
}

// Most items are about as long as the first one: then the report grows once for all of them.
void makeRoomForItems(_STL::wstring& output, size_t lengthOfFirst, u32 count, tStatus2& status) {
  constexpr u64 kMostCharacters = 4096;
  if (status.isError() || lengthOfFirst > kMostCharacters) return;
  u64 const expected = u64{lengthOfFirst} * count;
  u64 const room = expected < kMostCharacters ? expected : kMostCharacters;
  if (!output.reserve(output.size() + room)) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
}

bool areEquivalent(tReportItemContent const& left, tReportItemContent const& right,
                   tStatus2& status) {
  if (left.getUsageType() != right.getUsageType()) return false;
  iVariantReportable const* const leftValue = left.getReportable();
  iVariantReportable const* const rightValue = right.getReportable();
  if (leftValue == nullptr || rightValue == nullptr) return leftValue == rightValue;
  return leftValue->isEquivalent(*rightValue, status) != 0;
}

}  // namespace

void tStatus2DescriptionImplementation::copyItems(tStatus2DescriptionImplementation const& other,
                                                  i32& status) {
  if (status < 0) return;
  if (!items.assign(other.items.data(), other.items.size())) status = kStatusOutOfMemory;
}

void tStatus2DescriptionImplementation::insert(u32 index, i32 usageType,
                                               iVariantReportable const& reportable,
                                               tStatus2& status) {
  tReportItemContent item(usageType, reportable, status);
  if (status.isError()) return;
  if (!items.insert(index, _STL::move(item))) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
}

void tStatus2DescriptionImplementation::remove(u32 index, tStatus2& status) {
  if (isInRange(index, status)) items.erase(index);
}

void tStatus2DescriptionImplementation::replace(u32 index, i32 usageType,
                                                iVariantReportable const& reportable,
                                                tStatus2& status) {
  if (!isInRange(index, status)) return;
  tReportItemContent item(usageType, reportable, status);
  if (!status.isError()) items[index] = _STL::move(item);
}

i32 tStatus2DescriptionImplementation::getUsageType(u32 index, tStatus2& status) const {
  return isInRange(index, status) ? items[index].getUsageType() : -1;
}

iVariantReportable const* tStatus2DescriptionImplementation::getReportable(u32 index,
                                                                           tStatus2& status) const {
  return isInRange(index, status) ? items[index].getReportable() : nullptr;
}

void tStatus2DescriptionImplementation::getReportableClassName(u32 index, _STL::string& className,
                                                               tStatus2& status) const {
  if (!isInRange(index, status)) return;
  iVariantReportable const* const reportable = items[index].getReportable();
  char const* const name = reportable != nullptr ? classOf(*reportable).getName() : "";
  if (!className.assign(name)) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
}

u32 tStatus2DescriptionImplementation::findUsageType(i32 usageType, u32& foundIndex,
                                                     u32 startIndex) const {
  return find(foundIndex, startIndex,
              [&](tReportItemContent const& item) { return item.getUsageType() == usageType; });
}

u32 tStatus2DescriptionImplementation::findClass(nQELM100::tClass const& wanted, u32& foundIndex,
                                                 u32 startIndex) const {
  return find(foundIndex, startIndex, [&](tReportItemContent const& item) {
    return item.getReportable() != nullptr && classOf(*item.getReportable()) == wanted;
  });
}

u32 tStatus2DescriptionImplementation::findClassName(_STL::string const& className, u32& foundIndex,
                                                     u32 startIndex) const {
  return find(foundIndex, startIndex, [&](tReportItemContent const& item) {
    return item.getReportable() != nullptr && className == classOf(*item.getReportable()).getName();
  });
}

void tStatus2DescriptionImplementation::generateReport(iReportableTranslator const& translator,
                                                       _STL::wstring& output,
                                                       tStatus2& status) const {
  size_t const before = output.size();
  _STL::wstring text;
  for (u32 index = 0; index < getCount() && !status.isError(); ++index) {
    reportItem(items[index], translator, text, output, status);
    if (status.isError() || index + 1 == getCount()) return;
    append(output, translator.getItemSeparator(status), status);
    if (index == 0) makeRoomForItems(output, output.size() - before, getCount() - 1, status);
  }
}

bool tStatus2DescriptionImplementation::isEquivalent(
    tStatus2DescriptionImplementation const& other) const {
  if (getCount() != other.getCount()) return false;
  tStatus2 status;
  for (u32 index = 0; index < getCount(); ++index) {
    if (!areEquivalent(items[index], other.items[index], status)) return false;
  }
  return true;
}

nQELM100::iCloneable* tStatus2DescriptionImplementation::clone(i32& status) const {
  auto* const copy = nQELM100::makeObject<tStatus2DescriptionImplementation>(status);
  if (copy == nullptr) return nullptr;
  copy->copyItems(*this, status);
  if (status >= 0) return copy;
  nQELM100::destroyThroughClass(copy);
  return nullptr;
}

void tStatus2DescriptionImplementation::writeExternal(nQELM100::iObjectWriter& writer,
                                                      i32& status) const {
  if (status < 0) return;
  writer.writeU32(getCount(), status);
  for (tReportItemContent const& item : items) item.writeExternal(writer, status);
}

void tStatus2DescriptionImplementation::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  nQELM100::mergeStatus(status, storedStatus);
  if (status < 0) return;
  // Apart from the caller's: a warning of an earlier read says nothing about this list.
  i32 reading = 0;
  u32 count = 0;
  reader.readU32(count, reading);
  nQELM100::mergeStatus(status, reading);
  if (reading >= 0 && reading != nQELM100::kStatusNoListFollows) readItems(count, reader, status);
}

// The list grows with what was read, so that a count that is not true costs no memory.
void tStatus2DescriptionImplementation::readItems(u32 count, nQELM100::iObjectReader& reader,
                                                  i32& status) {
  makeEmpty();
  if (count > reader.getMostItems() / kFewestStreamItems) status = kStatusOutOfMemory;
  while (status >= 0 && getCount() < count) {
    if (!items.resize(items.size() + 1)) {
      makeEmpty();
      status = kStatusOutOfMemory;
      return;
    }
    items.back().readExternal(reader, status);
    if (status < 0) keepPlaces(count);
  }
}

// Without memory for them the list ends with the item that failed.
void tStatus2DescriptionImplementation::keepPlaces(u32 count) {
  constexpr u32 kMost = tStatus2Description::kMostUnreadItems;
  u32 const unread = count - getCount();
  items.resize(items.size() + (unread < kMost ? unread : kMost));
}

bool tStatus2DescriptionImplementation::isInRange(u32 index, tStatus2& status) const {
  if (index < getCount()) return true;
  OXDIAG_SET_STATUS(status, kStatusIndexOutOfRange);
  return false;
}

template <class Matches>
u32 tStatus2DescriptionImplementation::find(u32& foundIndex, u32 startIndex,
                                            Matches matches) const {
  for (u32 index = startIndex; index < getCount(); ++index) {
    if (!matches(items[index])) continue;
    foundIndex = index;
    return 1;
  }
  return 0;
}

}  // namespace nOXDIAG100
