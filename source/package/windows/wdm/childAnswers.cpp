#include "package/windows/wdm/childAnswers.h"

#include "package/windows/wdm/boundedWideText.h"
#include "package/windows/wdm/deviceRelations.h"
#include "package/windows/wdm/requestEnds.h"
#include "package/windows/wdm/wrapperMemory.h"

namespace nOXDIAG100 {
namespace {

constexpr wchar_t kLocation[] = L"Slot %02d";           // also how long the answer may be
constexpr size_t kInstanceLength = sizeof("00000000");  // characters
constexpr size_t kLongInstanceLength = sizeof("0000000000000000");
constexpr u64 kLargestShortInstance = 0xFFFFFFFF;

void* copyText(wchar_t const* text, u32 length) {
  return copyToAnswer(text, length * sizeof(wchar_t));
}

void* formatLocation(u32 slot) {
  auto* const text = static_cast<wchar_t*>(allocateAnswer(sizeof(kLocation)));
  if (text != nullptr) formatWideBytes(text, sizeof(kLocation), kLocation, static_cast<int>(slot));
  return text;
}

void* formatInstance(u64 instance) {
  bool const isShort = instance <= kLargestShortInstance;
  size_t const length = isShort ? kInstanceLength : kLongInstanceLength;
  auto* const text = static_cast<wchar_t*>(allocateAnswer(length * sizeof(wchar_t)));
  if (text == nullptr) return nullptr;
  formatWideCharacters(text, length, isShort ? L"%08I64x" : L"%016I64x", instance);
  return text;
}

void* makeText(tChildDevice const& child, DEVICE_TEXT_TYPE type) {
  if (type == DeviceTextLocationInformation) return formatLocation(child.slot);
  return copyText(child.texts.getDescription(), child.texts.getDescriptionLength());
}

}  // namespace

NTSTATUS tellRelations(tChildRequest& request) {
  if (request.location.Parameters.QueryDeviceRelations.Type != TargetDeviceRelation) {
    return keepStatus(request.irp);
  }
  DEVICE_RELATIONS* const relations = makeRelations(1);
  if (relations != nullptr) appendRelation(*relations, *request.child.device);
  return answerWith(request.irp, relations);
}

NTSTATUS tellNoRequirements(tChildRequest& request) {
  request.irp.IoStatus.Information = 0;
  return STATUS_SUCCESS;
}

NTSTATUS tellText(tChildRequest& request) {
  DEVICE_TEXT_TYPE const type = request.location.Parameters.QueryDeviceText.DeviceTextType;
  bool const isKnown = type == DeviceTextDescription || type == DeviceTextLocationInformation;
  if (!isKnown || request.irp.IoStatus.Information != 0) return keepStatus(request.irp);
  void* const text = makeText(request.child, type);
  return text == nullptr ? keepStatus(request.irp) : answerWith(request.irp, text);
}

NTSTATUS tellId(tChildRequest& request) {
  tChildTexts const& texts = request.child.texts;
  switch (request.location.Parameters.QueryId.IdType) {
    case BusQueryDeviceID:
      return answerWith(request.irp, copyText(texts.getIds(), texts.getFirstIdLength()));
    case BusQueryHardwareIDs:
      return answerWith(request.irp, copyText(texts.getIds(), texts.getIdsLength()));
    case BusQueryInstanceID:
      return answerWith(request.irp, formatInstance(request.child.instance));
    case BusQueryCompatibleIDs:
      request.irp.IoStatus.Information = 0;
      return STATUS_NOT_SUPPORTED;
    default:
      return keepStatus(request.irp);
  }
}

NTSTATUS tellBusInformation(tChildRequest& request) {
  tBusIdentity const& bus = request.child.bus;
  PNP_BUS_INFORMATION const information = {bus.type, PNPBus, bus.number};
  return answerWith(request.irp, copyToAnswer(&information, sizeof(information)));
}

}  // namespace nOXDIAG100
