#pragma once

#include "oxdiagk/iTraceDestination.h"

namespace nOXDIAG100 {

class tStatus2;

// Captures trace text in a buffer of the caller's.
//
//     char text[512];
//     i32 position = 0;
//     {
//       tCTFTraceDestination capture(text, position, sizeof(text), nullptr);
//       iTraceDestination* const former = trace.setDestination(capture);
//       runSelfTest();
//       trace.setDestination(*former);
//     }
//     // text[0] to text[position - 1] is what was traced meanwhile
//
// The last byte of the buffer stays a terminator; when all others are used, what follows is
// dropped. Behind the text of a stream there is no terminator: the position says where it ends. A
// capture that is the destination of streams when it is destroyed sends them back to the debugger
// print first, and so still receives the lines that announce it.
//
// Buffer and position belong to the caller and must outlive the capture. They may be looked at
// between texts, and the position may be set back to capture anew.
//
// IRQL: as far as the buffer is accessible; construction and destruction of a capture that is the
// current destination at PASSIVE_LEVEL. Thread safety: texts of several threads are captured whole
// and in order with "--mutex on". Without it they may be lost or mixed, but nothing is written
// outside the buffer. Other threads may be tracing while a capture is destroyed: the destructor
// waits for those that are within put. Buffer and position are looked at, and the position set
// back, when no thread traces or the capture is no longer installed.
class OXDIAG_API tCTFTraceDestination : public iTraceDestination {
 public:
  // `size` is that of the buffer in bytes; `position` the index of the next byte to write, from 0.
  // Unless the position stands at the last byte or behind it, a terminator is stored in the last
  // byte. A null buffer, a size of 1 or less or a negative position captures nothing. `status` is
  // not used.
  tCTFTraceDestination(char* buffer, i32& position, i32 size, tStatus2* status);

  // Leaves the trace streams that write here.
  ~tCTFTraceDestination() override;

  tCTFTraceDestination(tCTFTraceDestination const&) = delete;
  tCTFTraceDestination& operator=(tCTFTraceDestination const&) = delete;

  // Captures `text` and terminates it; the next text overwrites that terminator. Null counts as no
  // text.
  iTraceDestination& put(char const* text) override;

  // Captures exactly `length` bytes, NUL bytes included, and adds no terminator.
  iTraceDestination& put(char const* text, unsigned int length) override;

  // Has no options of its own.
  void configure(int argc, char** const argv) override;

  // " --destination ctf", which describes the capture: no option of the trace stream selects one.
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  u32 open() override;
  void close() override;

  // "CTF log file"
  char const* getDescription() const override;

 private:
  // Captures as much of `size` bytes as there is room for, and moves the position by `advance` of
  // them at most.
  void capture(char const* bytes, u64 size, u64 advance);

  char* const captured;
  i32* const position;
  i32 const capacity;  // bytes before the last one
};

}  // namespace nOXDIAG100
