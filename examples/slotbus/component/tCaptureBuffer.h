#pragma once

#include "vexk/tMemBlockReferenceTemplate.h"

namespace nSLOTBUS100 {

// Memory in which a tCTFTraceDestination captures what is traced, to be shown afterwards:
//
//     tCaptureBuffer buffer;
//     if (buffer.allocate()) {
//       tCTFTraceDestination capture(buffer.getText(), buffer.getPosition(), buffer.kSize, 0);
//       trace.setDestination(capture);
//       ...
//     }  // the capture goes, and the stream goes back to the debugger print
//     buffer.show();
//
// Not locked. PASSIVE_LEVEL.
class tCaptureBuffer {
 public:
  static constexpr i32 kSize = 256 * 1024;  // bytes; a full rack with all details needs a quarter

  // Returns false when memory is exhausted.
  bool allocate();

  // Null before allocate().
  char* getText() const { return block.get(); }

  // The index of the next byte to be captured.
  i32& getPosition() { return position; }

  // Prints the number of bytes and then what was captured, line by line, to the debugger.
  void show() const;

 private:
  tMemBlockReferenceTemplate<char> block;
  i32 position = 0;
};

}  // namespace nSLOTBUS100
