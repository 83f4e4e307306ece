#pragma once

#include "ntos/io.h"

// A request as the PnP manager sends it: to the top of a device's stack, waited for.
//
//     tSentRequest request(device, IRP_MJ_PNP, IRP_MN_QUERY_ID);
//     request.getParameters().QueryId.IdType = BusQueryDeviceID;
//     if (NT_SUCCESS(request.send())) use(request.getInformation());
//
// PASSIVE_LEVEL. Not sent, it leaks: send() is called once.
class tSentRequest {
 public:
  tSentRequest(DEVICE_OBJECT* target, u8 major, u8 minor);
  tSentRequest(tSentRequest const&) = delete;
  tSentRequest& operator=(tSentRequest const&) = delete;

  auto& getParameters() { return IoGetNextIrpStackLocation(request)->Parameters; }
  NTSTATUS send();
  u64 getInformation() const { return result.Information; }

 private:
  DEVICE_OBJECT* device;
  KEVENT done;
  IO_STATUS_BLOCK result = {};
  IRP* request;
};

// A device control with an answer in `output`, in the manner of METHOD_NEITHER.
NTSTATUS sendControl(DEVICE_OBJECT* device, u32 code, void* output, u32 outputLength,
                     u64& information);
