#include "pnp/requests.h"

#include <string.h>

#include "io/deviceTable.h"
#include "io/send.h"
#include "ntoshost/pnp.h"
#include "ntoshost/violation.h"
#include "pool/answers.h"

// What the PnP manager asks drivers, and what it does with their answers.

namespace ntoshost {
namespace {

constexpr char kTextAnswer[] = "a text";

Request pnpRequest(u8 minor) {
  Request request;
  request.major = IRP_MJ_PNP;
  request.minor = minor;
  return request;
}

// The characters of the answer; with `isList`, of a list of texts, up to its empty one.
size_t lengthOf(wchar_t const* text, size_t room, bool isList) {
  size_t length = 0;
  while (length < room && (text[length] != 0 || (isList && length > 0 && text[length - 1] != 0))) {
    ++length;
  }
  if (length < room) return length;
  violation("The driver answered with a text at %p that does not end in its block.",
            static_cast<void const*>(text));
}

// Copies the answer and frees it.
void takeText(void* answer, bool isList, wchar_t* text, u32 capacity) {
  memset(text, 0, capacity * sizeof(wchar_t));
  if (answer == nullptr) return;
  size_t const room = requireAnswer(answer, kTextAnswer) / sizeof(wchar_t);
  wchar_t const* const from = static_cast<wchar_t const*>(answer);
  size_t length = lengthOf(from, room, isList);
  u32 const most = capacity - (isList ? 2 : 1);
  if (length > most) length = most;
  memcpy(text, from, length * sizeof(wchar_t));
  freeAnswer(answer, kTextAnswer);
}

void requireRelation(DEVICE_OBJECT* device) {
  DevicesLock const lock;
  requireDevice(device, "IRP_MN_QUERY_DEVICE_RELATIONS");
  void* const address = device;
  if ((device->Flags & DO_DEVICE_INITIALIZING) != 0) {
    violation("A bus lists the device at %p, which says DO_DEVICE_INITIALIZING.", address);
  }
  if (recordOf(device).attachedTo != nullptr) {
    violation("A bus lists the device at %p, which is no physical device: it lies on another.",
              address);
  }
  bool const isDeleted = recordOf(device).isDeleted;
  if (recordOf(device).references <= (isDeleted ? 0 : 1)) {
    violation("A bus lists the device at %p without a reference on it.", address);
  }
  if (isDeleted) violation("A bus lists the device at %p, which it has deleted.", address);
}

void requireRelations(DEVICE_RELATIONS const* relations) {
  size_t const size = requireAnswer(relations, kRelationsAnswer);
  u64 const count = size < sizeof(DEVICE_RELATIONS) ? 0 : (size - 8) / sizeof(void*);
  if (relations->Count > count) {
    violation("The driver answered with device relations at %p of %u devices in %zu bytes.",
              static_cast<void const*>(relations), relations->Count, size);
  }
  for (u32 i = 0; i < relations->Count; ++i) requireRelation(relations->Objects[i]);
}

}  // namespace

NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor) {
  Request request = pnpRequest(minor);
  return sendRequest(device, request);
}

NTSTATUS sendPnpSurely(DEVICE_OBJECT* device, u8 minor) {
  Request request = pnpRequest(minor);
  return sendRequestSurely(device, request);
}

NTSTATUS ask(DEVICE_OBJECT* device, Request& request, void** answer) {
  *answer = nullptr;
  NTSTATUS const status = sendRequest(device, request);
  if (NT_SUCCESS(status)) *answer = reinterpret_cast<void*>(request.result.Information);
  return status;
}

NTSTATUS askRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type,
                      DEVICE_RELATIONS** relations) {
  Request request = pnpRequest(IRP_MN_QUERY_DEVICE_RELATIONS);
  request.parameters.QueryDeviceRelations.Type = type;
  void* answer;
  NTSTATUS const status = ask(device, request, &answer);
  *relations = static_cast<DEVICE_RELATIONS*>(answer);
  if (answer != nullptr) requireRelations(*relations);
  return status;
}

NTSTATUS queryId(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type, wchar_t* text, u32 capacity) {
  Request request = pnpRequest(IRP_MN_QUERY_ID);
  request.parameters.QueryId.IdType = type;
  void* answer;
  NTSTATUS const status = ask(device, request, &answer);
  bool const isList = type == BusQueryHardwareIDs || type == BusQueryCompatibleIDs;
  takeText(answer, isList, text, capacity);
  return status;
}

NTSTATUS queryText(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type, wchar_t* text, u32 capacity) {
  Request request = pnpRequest(IRP_MN_QUERY_DEVICE_TEXT);
  request.parameters.QueryDeviceText.DeviceTextType = type;
  request.parameters.QueryDeviceText.LocaleId = 0x409;
  void* answer;
  NTSTATUS const status = ask(device, request, &answer);
  takeText(answer, false, text, capacity);
  return status;
}

NTSTATUS queryCapabilities(DEVICE_OBJECT* device, DEVICE_CAPABILITIES& capabilities) {
  capabilities = {};
  capabilities.Size = sizeof(DEVICE_CAPABILITIES);
  capabilities.Version = 1;
  capabilities.Address = 0xFFFFFFFF;
  capabilities.UINumber = 0xFFFFFFFF;
  Request request = pnpRequest(IRP_MN_QUERY_CAPABILITIES);
  request.parameters.DeviceCapabilities.Capabilities = &capabilities;
  return sendRequest(device, request);
}

NTSTATUS queryBusInformation(DEVICE_OBJECT* device, PNP_BUS_INFORMATION& information) {
  information = {};
  Request request = pnpRequest(IRP_MN_QUERY_BUS_INFORMATION);
  void* answer;
  NTSTATUS const status = ask(device, request, &answer);
  if (answer == nullptr) return status;
  if (requireAnswer(answer, "bus information") < sizeof(PNP_BUS_INFORMATION)) {
    violation("The driver answered with bus information at %p that is too short.", answer);
  }
  information = *static_cast<PNP_BUS_INFORMATION const*>(answer);
  freeAnswer(answer, "bus information");
  return status;
}

NTSTATUS queryRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type, DEVICE_OBJECT** devices,
                        u64 capacity, u64* count) {
  DEVICE_RELATIONS* relations;
  NTSTATUS const status = askRelations(device, type, &relations);
  *count = 0;
  if (relations == nullptr) return status;
  *count = relations->Count;
  for (u32 i = 0; i < relations->Count; ++i) {
    if (i < capacity) devices[i] = relations->Objects[i];
    ObfDereferenceObject(relations->Objects[i]);
  }
  freeAnswer(relations, kRelationsAnswer);
  return status;
}

}  // namespace ntoshost
