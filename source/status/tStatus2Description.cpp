#include "oxdiagk/tStatus2Description.h"

#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "qelmk/ownedObjects.h"
#include "status/tStatus2DescriptionImplementation.h"

#define OXDIAG_STATUS_FILE "source/status/tStatus2Description"
#include "status/libraryStatus.h"

QELM_DEFINE_CLASS(nOXDIAG100::tStatus2Description, "nOXDIAG100::tStatus2Description")

namespace nOXDIAG100 {

tStatus2Description::tStatus2Description() : implementation(new tStatus2DescriptionImplementation) {
}

tStatus2Description::tStatus2Description(tStatus2& status) {
  i32 code = status.getCode();
  implementation = new (kMemLongLived, &code) tStatus2DescriptionImplementation;
  OXDIAG_SET_STATUS(status, code);
  if (implementation != nullptr) OXDIAG_SET_STATUS(status, implementation->getStoredStatus());
}

tStatus2Description::~tStatus2Description() {
  delete implementation;
}

void tStatus2Description::addReportItem(i32 usageType, iVariantReportable const& reportable,
                                        tStatus2& status) {
  if (isUsable(status)) implementation->add(usageType, reportable, status);
}

void tStatus2Description::addHeader(i32 usageType, tStatus2& status) {
  if (isUsable(status)) implementation->add(usageType, tTitleReportable(), status);
}

void tStatus2Description::addNewline(tStatus2& status) {
  if (isUsable(status)) implementation->add(kNewlineUsageType, tWhiteSpaceReportable(), status);
}

void tStatus2Description::insertReportItemAtIndex(u32 index, i32 usageType,
                                                  iVariantReportable const& reportable,
                                                  tStatus2& status) {
  if (isUsable(status)) implementation->insert(index, usageType, reportable, status);
}

void tStatus2Description::removeReportItemAtIndex(u32 index, tStatus2& status) {
  if (isUsable(status)) implementation->remove(index, status);
}

void tStatus2Description::replaceReportItemAtIndex(u32 index, i32 usageType,
                                                   iVariantReportable const& reportable,
                                                   tStatus2& status) {
  if (isUsable(status)) implementation->replace(index, usageType, reportable, status);
}

void tStatus2Description::makeEmpty(tStatus2& status) {
  if (isUsable(status)) implementation->makeEmpty();
}

u32 tStatus2Description::getNumberOfReportItems(tStatus2& status) const {
  return isUsable(status) ? implementation->getCount() : 0;
}

i32 tStatus2Description::getUsageTypeAtIndex(u32 index, tStatus2& status) const {
  return isUsable(status) ? implementation->getUsageType(index, status) : -1;
}

iVariantReportable const* tStatus2Description::getReportablePtrAtIndex(u32 index,
                                                                       tStatus2& status) const {
  return isUsable(status) ? implementation->getReportable(index, status) : nullptr;
}

void tStatus2Description::getReportableClassNameAtIndex(u32 index, _STL::string& className,
                                                        tStatus2& status) const {
  if (isUsable(status)) implementation->getReportableClassName(index, className, status);
}

u32 tStatus2Description::findMatchingUsageType(i32 usageType, u32& foundIndex, tStatus2& status,
                                               u32 startIndex) const {
  if (!isUsable(status)) return 0;
  return implementation->findUsageType(usageType, foundIndex, startIndex);
}

u32 tStatus2Description::findMatchingReportable(nQELM100::tClass const& wanted, u32& foundIndex,
                                                tStatus2& status, u32 startIndex) const {
  if (!isUsable(status)) return 0;
  return implementation->findClass(wanted, foundIndex, startIndex);
}

u32 tStatus2Description::findMatchingReportable(_STL::string const& className, u32& foundIndex,
                                                tStatus2& status, u32 startIndex) const {
  if (!isUsable(status)) return 0;
  return implementation->findClassName(className, foundIndex, startIndex);
}

void tStatus2Description::generateReport(iReportableTranslator const& translator,
                                         _STL::wstring& output, tStatus2& status) const {
  if (isUsable(status)) implementation->generateReport(translator, output, status);
}

bool tStatus2Description::operator==(tStatus2Description const& other) const {
  if (implementation == nullptr || other.implementation == nullptr) return false;
  return implementation->isEquivalent(*other.implementation);
}

nQELM100::iCloneable* tStatus2Description::clone(i32& status) const {
  auto* const copy = nQELM100::makeObject<tStatus2Description>(status);
  if (copy == nullptr) return nullptr;
  copyInto(*copy, status);
  if (status >= 0) return copy;
  nQELM100::destroyThroughClass(copy);
  return nullptr;
}

void tStatus2Description::copyInto(tStatus2Description& copy, i32& status) const {
  if (copy.implementation == nullptr) return nQELM100::mergeStatus(status, kStatusOutOfMemory);
  nQELM100::mergeStatus(status, copy.implementation->getStoredStatus());
  if (implementation == nullptr) return nQELM100::mergeStatus(status, kStatusNoImplementation);
  copy.tObject::operator=(*this);
  copy.implementation->copyItems(*implementation, status);
}

void tStatus2Description::writeExternal(nQELM100::iObjectWriter& writer, i32& status) const {
  if (implementation == nullptr) return nQELM100::mergeStatus(status, kStatusNoImplementation);
  implementation->writeExternal(writer, status);
}

void tStatus2Description::readExternal(nQELM100::iObjectReader& reader, i32& status) {
  if (implementation == nullptr) return nQELM100::mergeStatus(status, kStatusOutOfMemory);
  implementation->readExternal(reader, status);
}

bool tStatus2Description::isUsable(tStatus2& status) const {
  if (status.isError()) return false;
  if (implementation == nullptr) OXDIAG_SET_STATUS(status, kStatusNoImplementation);
  return implementation != nullptr;
}

}  // namespace nOXDIAG100
