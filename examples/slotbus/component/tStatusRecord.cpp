#include "slotbus/component/tStatusRecord.h"

#include "qelmk/tBinaryObjectWriter.h"

namespace nSLOTBUS100 {

bool tStatusRecord::allocate() {
  i32 status = 0;
  block.allocate(kSize, kMemLongLived, status);
  return status >= 0;
}

void tStatusRecord::add(nOXDIAG100::tStatus2 const& status) {
  i32 code = 0;
  // A writer without buffer would only count.
  if (block.get() == nullptr) code = kStatusOutOfMemory;
  nQELM100::tBinaryObjectWriter writer(block.get() + length, kSize - length);
  status.writeExternal(writer, code);
  writer.finish(code);
  if (code < 0) {
    ++missingCount;
  } else {
    length += writer.getSize();
  }
}

}  // namespace nSLOTBUS100
