#pragma once

// How a request ends here, and what it carries as its answer.

#include "ntos/irp.h"

namespace nOXDIAG100 {

// Completes the request with `status`, which is returned. IRQL <= DISPATCH_LEVEL.
inline NTSTATUS completeRequest(IRP& request, NTSTATUS status) {
  request.IoStatus.Status = status;
  IoCompleteRequest(&request, IO_NO_INCREMENT);
  return status;
}

// Makes a block of memory the answer of the request; null means that memory is exhausted. Returns
// the status for the request.
inline NTSTATUS answerWith(IRP& request, void* block) {
  request.IoStatus.Information = reinterpret_cast<u64>(block);
  return block == nullptr ? STATUS_INSUFFICIENT_RESOURCES : STATUS_SUCCESS;
}

// The status that the request has come with.
inline NTSTATUS keepStatus(IRP const& request) {
  return request.IoStatus.Status;
}

}  // namespace nOXDIAG100
