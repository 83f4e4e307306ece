#include "slotRequests.h"

#include "tSentRequest.h"
#include "wine/wineKernel.h"

using namespace nSLOTBUS100;

namespace {

NTSTATUS sendPower(DEVICE_OBJECT* device, u8 minor, DEVICE_POWER_STATE state) {
  tSentRequest request(device, IRP_MJ_POWER, minor);
  request.getParameters().Power.Type = DevicePowerState;
  request.getParameters().Power.State.DeviceState = state;
  return request.send();
}

template <class T>
NTSTATUS sendForAnswer(tSentRequest& request, T*& answer) {
  NTSTATUS const status = request.send();
  answer = NT_SUCCESS(status) ? reinterpret_cast<T*>(request.getInformation()) : nullptr;
  return status;
}

}  // namespace

NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor) {
  return tSentRequest(device, IRP_MJ_PNP, minor).send();
}

NTSTATUS setPower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state) {
  return sendPower(device, IRP_MN_SET_POWER, state);
}

NTSTATUS queryPower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state) {
  return sendPower(device, IRP_MN_QUERY_POWER, state);
}

NTSTATUS queryId(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type, wchar_t*& answer) {
  tSentRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_ID);
  request.getParameters().QueryId.IdType = type;
  return sendForAnswer(request, answer);
}

NTSTATUS queryText(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type, wchar_t*& answer) {
  tSentRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_TEXT);
  request.getParameters().QueryDeviceText.DeviceTextType = type;
  return sendForAnswer(request, answer);
}

NTSTATUS queryBusInformation(DEVICE_OBJECT* device, PNP_BUS_INFORMATION*& answer) {
  tSentRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  return sendForAnswer(request, answer);
}

void giveBack(void* answer) {
  if (answer != nullptr) ExFreePool(answer);
}

NTSTATUS queryCapabilities(DEVICE_OBJECT* device, DEVICE_CAPABILITIES& capabilities) {
  capabilities = {};
  capabilities.Size = sizeof(capabilities);
  capabilities.Version = 1;
  capabilities.Address = capabilities.UINumber = 0xFFFFFFFF;
  tSentRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES);
  request.getParameters().DeviceCapabilities.Capabilities = &capabilities;
  return request.send();
}

NTSTATUS tellLine(DEVICE_OBJECT* device, tSlotLine& line) {
  line = {};
  u64 given = 0;
  NTSTATUS const status = sendControl(device, kControlTellLine, &line, sizeof(line), given);
  return NT_SUCCESS(status) && given != sizeof(line) ? STATUS_BUFFER_TOO_SMALL : status;
}

bool isText(wchar_t const* seen, char const* wanted) {
  if (seen == nullptr) return false;
  while (*wanted != '\0' && *seen == static_cast<wchar_t>(*wanted)) ++seen, ++wanted;
  return *seen == L'\0' && *wanted == '\0';
}
