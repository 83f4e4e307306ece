#include "oxdiagk/tReportItemContent.h"

#include "oxdiagk/iVariantReportable.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/ownedObjects.h"
#include "stl/utility.h"

// The failures are those of the item, whoever holds its content.
#define OXDIAG_STATUS_FILE "source/status/tReportItem"
#include "status/libraryStatus.h"

namespace nOXDIAG100 {
namespace {

// Null with the reason in `status`. What a class makes of the failure of its clone is its own
// matter; here it is memory that a clone takes.
iVariantReportable* cloneValue(iVariantReportable const& value, i32& status) {
  i32 reason = 0;
  nQELM100::iCloneable* const copy = value.clone(reason);
  if (copy != nullptr) return nQELM100::adoptObject<iVariantReportable>(copy, status);
  nQELM100::mergeStatus(status, kStatusOutOfMemory);
  return nullptr;
}

}  // namespace

tReportItemContent::tReportItemContent(i32 itemUsageType, iVariantReportable const& value,
                                       tStatus2& status)
    : usageType(itemUsageType) {
  if (status.isError()) return;
  i32 code = 0;
  reportable = cloneValue(value, code);
  OXDIAG_SET_STATUS(status, code);
}

tReportItemContent::tReportItemContent(tReportItemContent const& other) noexcept
    : usageType(other.usageType) {
  if (other.reportable == nullptr) return;
  i32 status = 0;
  reportable = cloneValue(*other.reportable, status);
  failed = reportable == nullptr;
}

tReportItemContent::tReportItemContent(tReportItemContent&& other) noexcept {
  exchange(other);
}

tReportItemContent::~tReportItemContent() {
  nQELM100::destroyThroughClass(reportable);
}

tReportItemContent& tReportItemContent::operator=(tReportItemContent const& other) noexcept {
  tReportItemContent copy(other);
  if (copy.hasFailed()) {
    failed = true;
  } else {
    copy.failed = failed;
    exchange(copy);
  }
  return *this;
}

tReportItemContent& tReportItemContent::operator=(tReportItemContent&& other) noexcept {
  tReportItemContent taken(_STL::move(other));
  exchange(taken);
  return *this;
}

void tReportItemContent::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (status < 0) return;
  writer.writeI32(usageType, status);
  writer.writeU32(reportable != nullptr ? 1 : 0, status);
  if (reportable != nullptr) writer.writeObject(reportable, status);
}

void tReportItemContent::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  if (status < 0) return;
  i32 readUsageType = 0;
  u32 hasReportable = 0;
  iVariantReportable* readReportable = nullptr;
  reader.readI32(readUsageType, status);
  reader.readU32(hasReportable, status);
  if (hasReportable != 0) {
    readReportable = nQELM100::adoptObject<iVariantReportable>(reader.readObject(status), status);
  }
  if (status < 0) return nQELM100::destroyThroughClass(readReportable);
  nQELM100::destroyThroughClass(reportable);
  usageType = readUsageType;
  reportable = readReportable;
  failed = false;
}

void tReportItemContent::exchange(tReportItemContent& other) noexcept {
  _STL::swap(usageType, other.usageType);
  _STL::swap(failed, other.failed);
  _STL::swap(reportable, other.reportable);
}

}  // namespace nOXDIAG100
