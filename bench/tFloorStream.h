#pragma once

#include "oxdiagk/iTraceDestination.h"

// The least that a trace stream can be: a line buffer of the same size, a level to compare with, a
// destination behind the same virtual call, two reads of the time stamp counter a line. What a
// patient author would write by hand for one kind of line, and what the library's cost is measured
// against. It knows no switches, no filter terms, no suppressed state between calls.
class tFloorStream {
 public:
  explicit tFloorStream(nOXDIAG100::iTraceDestination& first) : destination(&first) {}

  void setEnabled(bool value) { enabled = value; }
  void setLevel(u32 value) { level = value; }

  // One whole line: a prefix of 51 characters, "] " included, then "slot ", the number, "
  // answered".
  void putLine(u32 verbosity, u32 slot);

  // The same with every field in the prefix, which has 111 characters then: component, version,
  // line, file, thread, counter, ticks since the line before, level.
  void putFullLine(u32 verbosity, u32 slot);

  // The two lines of a block, with the same prefix; lines in between are indented.
  void enterBlock(u32 verbosity, char const* name);
  void leaveBlock(u32 verbosity, char const* name);

  // A number in decimal or as 0x and hexadecimal digits, into the line buffer, which is handed over
  // when it is full.
  void putDecimal(i32 value);
  void putHexadecimal(i32 value);

  // Rows of 16 bytes as four little-endian numbers, each row one piece of text:
  // address, ": ", four groups, ": ", characters.
  void putDump(void const* address, u32 length);

 private:
  static constexpr u32 kBufferSize = 256;

  char* writeFullPrefix(u32 verbosity);
  char* indent(char* to) const;
  void append(char const* text, size_t length);
  void flush();

  nOXDIAG100::iTraceDestination* destination;
  bool enabled = true;
  u32 level = 100;
  u64 lineStart = 0;
  u64 lineEnd = 0;
  size_t nesting = 0;
  size_t used = 0;
  char buffer[kBufferSize] = {};
};
