#include "slotbus/component/tCaptureBuffer.h"

#include "oxdiagk/tVEXTraceDestination.h"
#include "slotbus/component/tTextSpan.h"
#include "vexk/debug.h"

using nOXDIAG100::tVEXTraceDestination;

namespace nSLOTBUS100 {
namespace {

// One print takes no more than a line buffer of the stream holds, as for lines that are not
// captured.
constexpr size_t kMaxPrintLength = 255;

void print(tTextSpan line) {
  while (!line.isEmpty()) {
    tTextSpan const piece = line.getFirst(kMaxPrintLength);
    tVEXTraceDestination::getInstance().put(piece.getText(),
                                            static_cast<unsigned int>(piece.getLength()));
    line = line.getBehind(piece.getLength());
  }
}

}  // namespace

bool tCaptureBuffer::allocate() {
  i32 status = 0;
  block.allocate(kSize, kMemLongLived, status);
  return status >= 0;
}

void tCaptureBuffer::show() const {
  bool const isFull = position >= kSize - 1;
  ssprintf("captured %d bytes%s:\n", position, isFull ? ", which filled the buffer" : "");
  tTextSpan rest(block.get(), static_cast<size_t>(position));
  while (!rest.isEmpty()) {
    tTextSpan const first = rest;
    rest.takeUntil('\n');
    print(first.getFirst(first.getLength() - rest.getLength()));
  }
}

}  // namespace nSLOTBUS100
