#include "oxdiagk/tReportItem.h"

#include "qelmk/ownedObjects.h"
#include "stl/memory.h"
#include "stl/utility.h"

QELM_DEFINE_CLASS(nOXDIAG100::tReportItem, "nOXDIAG100::tReportItem")

namespace nOXDIAG100 {

tReportItem::tReportItem(i32 itemUsageType, iVariantReportable const& value, tStatus2& status)
    : content(itemUsageType, value, status) {
}

tReportItem::tReportItem(tReportItem const& other) noexcept
    : tObject(other), iCloneableExternalizable(other), content(other.content) {
}

tReportItem::tReportItem(tReportItem&& other) noexcept
    : tObject(other), iCloneableExternalizable(other), content(_STL::move(other.content)) {
}

tReportItem::~tReportItem() = default;

tReportItem& tReportItem::operator=(tReportItem const& other) noexcept {
  content = other.content;
  return *this;
}

tReportItem& tReportItem::operator=(tReportItem&& other) noexcept {
  content = _STL::move(other.content);
  return *this;
}

nQELM100::iCloneable* tReportItem::clone(i32& status) const {
  auto* const copy = nQELM100::makeObject<tReportItem>(status);
  if (copy == nullptr) return nullptr;
  *copy = *this;
  if (!copy->hasFailed()) return copy;
  nQELM100::destroyThroughClass(copy);
  nQELM100::mergeStatus(status, kStatusOutOfMemory);
  return nullptr;
}

void tReportItem::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  content.writeExternal(writer, status);
}

void tReportItem::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  content.readExternal(reader, status);
}

}  // namespace nOXDIAG100
