#pragma once

#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tTraceSite.h"

namespace nOXDIAG100 {

// What a line says in front of its text.
struct tLineFacts {
  tLineOrigin const& origin;  // with texts that are not null
  u32 verbosity;
  u64 startTime;
  u64 timeDelta;
};

// Writes the prefix of one line into a stream: the fields that are switched on, cut and padded to
// the width, and its closing. Allocates nothing.
class tTracePrefix {
 public:
  tTracePrefix(tTraceParts& parts, tLineShape shape, tLineFacts const& facts);

  // To be called once.
  void write();

 private:
  tTracePrefix(tTraceParts& parts, tLineShape shape, tLineFacts const& facts, u32 width,
               bool isTruncated);

#define OXDIAG_TRACE_FIELD(Name, name, place, atStart, word, field) void put##Name();
  OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_FIELD, OXDIAG_TRACE_NO_SWITCH, OXDIAG_TRACE_NO_SWITCH)
#undef OXDIAG_TRACE_FIELD

  bool beginField();
  void put(char const* piece);
  void put(char const* piece, u64 length);
  void putLong(char const* piece, u64 length);
  void putDecimal(u64 number);
  void cut();
  void pad(char character);
  void close(char first);
  void flush();

  tTraceParts& parts;
  tLineShape const shape;
  tLineFacts const& facts;
  u64 const padTarget;
  u64 const fieldLimit;
  bool const isWithoutEnd;
  bool isFirst = true;  // no field has been written

  // What is written goes into the line in pieces of about this size. Behind them is room for a
  // separator, for what closes the prefix, and for words that pad beyond the end.
  static constexpr u64 kTextSize = 120;
  u64 flushed = 0;  // characters that are in the line
  u64 used = 0;     // those that are in the text
  char text[kTextSize + 2 * sizeof(u64)];
};

}  // namespace nOXDIAG100
