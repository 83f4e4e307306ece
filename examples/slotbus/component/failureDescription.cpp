#include "slotbus/component/failureDescription.h"

#include "oxdiagk/tBoundedRangeReportable.h"
#include "oxdiagk/tEnumPropertyReportable.h"
#include "oxdiagk/tGUIDReportable.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStatus2Description.h"
#include "slotbus/component/component.h"
#include "slotbus/component/reportNumbers.h"
#include "slotbus/component/statusCodes.h"
#include "slotbus/component/tExcerpt.h"

using nOXDIAG100::tBoundedRangeReportable;
using nOXDIAG100::tEnumPropertyReportable;
using nOXDIAG100::tGUIDReportable;
using nOXDIAG100::tIntrinsicTypeReportable;
using nOXDIAG100::tPropertyIDReportable;
using nOXDIAG100::tSSTimeAbsoluteReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace nSLOTBUS100 {
namespace {

constexpr i32 kFields[] = {kPropertySlot, kPropertyInstance, kPropertyHardwareIds,
                           kPropertyDescription};
constexpr u32 kFieldCount = sizeof(kFields) / sizeof(kFields[0]);
constexpr u64 kMostInstance = ~u64{0};

// What would be right. Usage type 0: nothing to tell of bounds.
struct tRule {
  i32 code;
  i32 property;  // 0: the line or the text as a whole
  i32 boundsUsage = 0;
  u64 lower = 0;
  u64 upper = 0;
  bool hasForms = false;
};

constexpr tRule kRules[] = {
    {kStatusTextTooLong, 0, kUsageLength, 0, kMaxRackTextLength},
    {kStatusLineTooLong, 0, kUsageLength, 0, kMaxLineLength},
    {kStatusSlotNotANumber, kPropertySlot, kUsageAllowed, kFirstSlot, kLastSlot, true},
    {kStatusSlotOutOfRange, kPropertySlot, kUsageAllowed, kFirstSlot, kLastSlot},
    {kStatusInstanceNotANumber, kPropertyInstance, kUsageAllowed, 0, kMostInstance, true},
    {kStatusInstanceTooLarge, kPropertyInstance, kUsageAllowed, 0, kMostInstance},
    {kStatusNoHardwareId, kPropertyHardwareIds},
    {kStatusBlankInHardwareId, kPropertyHardwareIds},
    {kStatusHardwareIdTooLong, kPropertyHardwareIds, kUsageLength, 1, kMaxHardwareIdLength},
    {kStatusHardwareIdsTooLong, kPropertyHardwareIds, kUsageLength, 1, kMaxHardwareIdsLength},
    {kStatusNoDescription, kPropertyDescription, kUsageLength, 1, kMaxDescriptionLength},
    {kStatusDescriptionTooLong, kPropertyDescription, kUsageLength, 1, kMaxDescriptionLength},
    {kStatusSlotTaken, kPropertySlot},
    {kStatusInstanceTaken, kPropertyInstance},
};

constexpr tRule kNoRule = {0, 0};

tRule const& findRule(i32 code) {
  for (tRule const& rule : kRules) {
    if (rule.code == code) return rule;
  }
  return kNoRule;
}

template <class tReportable, class... tValues>
void add(tStatus2Description& description, i32 usageType, tStatus2& status,
         tValues const&... values) {
  if (status.isError()) return;
  tReportable const reportable(values..., status);
  description.addReportItem(usageType, reportable, status);
}

void addLine(tStatus2Description& description, i32 usageType, u32 line, tStatus2& status) {
  if (line != 0) add<tIntrinsicTypeReportable<u32>>(description, usageType, status, line);
}

void addFields(tStatus2Description& description, i32 code, tRule const& rule, tStatus2& status) {
  if (rule.property != 0) {
    add<tPropertyIDReportable>(description, kUsageField, status, rule.property);
  }
  if (code != kStatusMissingField && code != kStatusExtraField) return;
  _STL::vector<i32> fields;
  if (!fields.assign(kFields, kFieldCount)) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  add<tPropertyIDReportable>(description, kUsageField, status, fields);
}

void addFound(tStatus2Description& description, tTextSpan offence, tStatus2& status) {
  _STL::wstring const found = tExcerpt(offence).getWide();
  if (found.hasFailed()) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  add<tIntrinsicTypeReportable<_STL::wstring>>(description, kUsageFound, status, found);
}

void addRule(tStatus2Description& description, tRule const& rule, tStatus2& status) {
  if (rule.boundsUsage != 0) {
    add<tBoundedRangeReportable<u64>>(description, rule.boundsUsage, status, rule.lower,
                                      rule.upper);
  }
  if (!rule.hasForms) return;
  constexpr i32 kForms[] = {kNumberFormDecimal, kNumberFormHexadecimal};
  _STL::vector<i32> forms;
  if (!forms.assign(kForms, 2)) OXDIAG_SET_STATUS(status, kStatusOutOfMemory);
  add<tEnumPropertyReportable>(description, kUsageForms, status, i32{kPropertyNumberForm}, forms);
}

}  // namespace

void describeFailure(tFailurePlace const& place, tStatus2& status) {
  if (!status.isError()) return;
  tStatus2 own;
  tRule const& rule = findRule(status.getCode());
  tStatus2Description description(own);
  description.addHeader(status.getCode(), own);
  addLine(description, kUsageLine, place.line, own);
  addFields(description, status.getCode(), rule, own);
  addFound(description, place.offence, own);
  addRule(description, rule, own);
  addLine(description, kUsageEarlierLine, place.earlierLine, own);
  add<tGUIDReportable>(description, kUsageBus, own, kBusGUID);
  add<tSSTimeAbsoluteReportable>(description, kUsageTime, own, tSSTimeAbsolute::now());
  if (!own.isError()) status.setDescription(description);
}

}  // namespace nSLOTBUS100
