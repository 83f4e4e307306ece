#include "slotbus/component/controlAnswer.h"

#include "ntos/status.h"
#include "slotbus/component/component.h"
#include "vexk/userMemory.h"

using nOXDIAG100::tStatus2;

namespace nSLOTBUS100 {

u64 giveAnswer(void const* answer, u32 size, tControlOutput output, tStatus2& status) {
  if (output.length < size) OXDIAG_SET_STATUS(status, STATUS_BUFFER_TOO_SMALL);
  if (status.isError()) return 0;
  u64 const address = reinterpret_cast<u64>(output.address);
  if (vexCopyToUser(address, answer, size) != size) {
    OXDIAG_SET_STATUS(status, STATUS_ACCESS_VIOLATION);
  }
  return status.isError() ? 0 : size;
}

}  // namespace nSLOTBUS100
