#include "slotbus/component/tStatusRecord.h"

#include "oxdiagk/tStatus2ModuleList.h"
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
  write(status, writer, code);
  writer.finish(code);
  if (code < 0) {
    ++missingCount;
  } else {
    length += writer.getSize();
  }
}

void tStatusRecord::write(nOXDIAG100::tStatus2 const& status, nQELM100::iObjectWriter& writer,
                          i32& code) const {
  if (keepsModules) {
    status.writeExternal(writer, nOXDIAG100::tStatus2ModuleList(status), code);
  } else {
    status.writeExternal(writer, code);
  }
}

}  // namespace nSLOTBUS100
