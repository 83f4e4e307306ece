#pragma once

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

class tStatus2;

// Traces the entry to a block of code when it is built and the exit when it is destroyed; the lines
// traced in between are indented by one level more:
//
//     [slotbus--41--tRack.cpp--] readLine; this=0x7FF6120; tStatus=0 {
//     [slotbus--57--tRack.cpp--]   slot 12
//     [slotbus--41--tRack.cpp--] } tStatus=-5; readLine
//
// The macros of "oxdiagk/traceMacros.h" name the block after its function and fill in the rest:
//
//     i32 readLine(i32& status) {
//       OXDIAG_BLOCK_STATUS(120, this, &status);
//       ...
//
// Nothing is copied: texts, status and stream must outlive the object, and the exit line shows the
// status as it is then. The nesting level moves also when the lines are not shown. Both lines are
// complete in themselves, from prefix to endl, so the line mutex is not held in between.
//
// Allocates nothing. Any IRQL at which the stream may be written; with the line mutex on
// IRQL <= APC_LEVEL. All threads share the nesting level of the stream.
class OXDIAG_API tBlockTracer {
 public:
  // `component`, `version`, `line`, `file` and `verbosity` are those of tTrace::putPrefix, for both
  // lines. `blockName`: usually the name of the function; null writes none. `object`: shown in the
  // entry line as "this=" and its address, unless null. `status`: shown in both lines, as
  // "tStatus=" with its value in decimal or "tStatus2 code=" with its code, unless null.
  // The texts are only read; they are not `const` because the exported names are older than that.
  tBlockTracer(char* component, tSSVersion version, unsigned int line, char* file,
               unsigned int verbosity, char* blockName, void* const object, i32* status,
               tTrace& trace);
  tBlockTracer(char* component, tSSVersion version, unsigned int line, char* file,
               unsigned int verbosity, char* blockName, void* const object, tStatus2* status,
               tTrace& trace);

  // Writes the exit line.
  ~tBlockTracer();

  tBlockTracer(tBlockTracer const&) = delete;
  tBlockTracer& operator=(tBlockTracer const&) = delete;

  // Always 0. The level is the stream's: tTrace::getNestingLevel().
  static u32 getNestingLevel();

 private:
  void writeEntry(void const* object);
  void writeExit();

  char* component;
  tSSVersion version;
  u32 line;
  char* file;
  u32 verbosity;
  char* blockName;
  i32* legacyStatus;
  tStatus2* statusObject;
  tTrace* trace;
};

}  // namespace nOXDIAG100
