#include "slotbus/component/tRackLine.h"

#include "slotbus/component/component.h"
#include "slotbus/component/number.h"
#include "slotbus/component/statusCodes.h"

using nOXDIAG100::tStatus2;

namespace nSLOTBUS100 {
namespace {

bool isPlain(char character) {
  return (character >= ' ' && character <= '~') || character == '\t';
}

}  // namespace

tRackLine::tRackLine(tTextSpan line, u32 lineNumber)
    : text(line.getTrimmed()), offence(text), number(lineNumber) {
}

bool tRackLine::isDevice() const {
  return !text.isEmpty() && text[0] != '#';
}

void tRackLine::read(tDevice& device, tStatus2& status) {
  tTextSpan fields[kFieldCount];
  tDevice result;
  checkCharacters(status);
  split(fields, status);
  readSlot(fields[0], result, status);
  readInstance(fields[1], result, status);
  readHardwareIds(fields[2], result, status);
  readDescription(fields[3], result, status);
  if (status.isError()) return;
  result.lineNumber = number;
  device = result;
}

void tRackLine::checkCharacters(tStatus2& status) {
  offence = text;
  if (text.getLength() > kMaxLineLength) OXDIAG_SET_STATUS(status, kStatusLineTooLong);
  for (size_t index = 0; index < text.getLength() && !status.isError(); ++index) {
    if (isPlain(text[index])) continue;
    OXDIAG_SET_STATUS(status, kStatusBadCharacter);
  }
}

void tRackLine::split(tTextSpan (&fields)[kFieldCount], tStatus2& status) {
  if (status.isError()) return;
  tTextSpan rest = text;
  for (u32 index = 0; index + 1 < kFieldCount; ++index) {
    if (!rest.contains('|')) OXDIAG_SET_STATUS(status, kStatusMissingField);
    fields[index] = rest.takeUntil('|').getTrimmed();
  }
  fields[kFieldCount - 1] = rest.getTrimmed();
  if (rest.contains('|')) OXDIAG_SET_STATUS(status, kStatusExtraField);
}

void tRackLine::readSlot(tTextSpan field, tDevice& device, tStatus2& status) {
  if (status.isError()) return;
  offence = field;
  u64 value = 0;
  tNumberResult const result = readNumber(field, value);
  if (result == tNumberResult::kNotANumber) OXDIAG_SET_STATUS(status, kStatusSlotNotANumber);
  if (result == tNumberResult::kTooLarge || value < kFirstSlot || value > kLastSlot) {
    OXDIAG_SET_STATUS(status, kStatusSlotOutOfRange);
  }
  device.slot = static_cast<u32>(value);
}

void tRackLine::readInstance(tTextSpan field, tDevice& device, tStatus2& status) {
  if (status.isError()) return;
  offence = field;
  tNumberResult const result = readNumber(field, device.instance);
  if (result == tNumberResult::kNotANumber) OXDIAG_SET_STATUS(status, kStatusInstanceNotANumber);
  if (result == tNumberResult::kTooLarge) OXDIAG_SET_STATUS(status, kStatusInstanceTooLarge);
}

void tRackLine::readHardwareIds(tTextSpan field, tDevice& device, tStatus2& status) {
  u64 multiStringLength = 1;
  bool isLast = false;
  for (tTextSpan rest = field; !isLast && !status.isError();) {
    isLast = !rest.contains(',');
    tTextSpan const id = tDevice::takeHardwareId(rest);
    checkHardwareId(id, status);
    multiStringLength += id.getLength() + 1;
  }
  if (status.isError()) return;
  offence = field;
  if (multiStringLength > kMaxHardwareIdsLength)
    OXDIAG_SET_STATUS(status, kStatusHardwareIdsTooLong);
  device.hardwareIds = field;
}

void tRackLine::checkHardwareId(tTextSpan id, tStatus2& status) {
  offence = id;
  if (id.isEmpty()) OXDIAG_SET_STATUS(status, kStatusNoHardwareId);
  if (id.contains(' ') || id.contains('\t')) OXDIAG_SET_STATUS(status, kStatusBlankInHardwareId);
  if (id.getLength() > kMaxHardwareIdLength) OXDIAG_SET_STATUS(status, kStatusHardwareIdTooLong);
}

void tRackLine::readDescription(tTextSpan field, tDevice& device, tStatus2& status) {
  if (status.isError()) return;
  offence = field;
  if (field.isEmpty()) OXDIAG_SET_STATUS(status, kStatusNoDescription);
  if (field.getLength() > kMaxDescriptionLength)
    OXDIAG_SET_STATUS(status, kStatusDescriptionTooLong);
  device.description = field;
}

}  // namespace nSLOTBUS100
