#pragma once

#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {

// Opens one line of a stream: judges it, writes its prefix, keeps the nesting and the carried time.
// A line that is not shown costs its filter and no formatting. Allocates nothing.
class tTracePrefix {
 public:
  // What the author of the line says about it. The texts are not null.
  struct tOrigin {
    char const* component;
    tSSVersion version;
    u32 line;
    char const* file;
    u32 verbosity;
    tTrace::tTraceType type;
  };

  // The fields in the order of the prefix.
  enum tField : u32 {
    kComponentName,
    kComponentVersion,
    kLineNumber,
    kFileName,
    kThreadId,
    kTimeStamp,
    kTimeDelta,
    kVerbosity,
    kFieldCount
  };

  tTracePrefix(tTrace& trace, tOrigin const& origin, u64 startTime);

  // Everything that putPrefix does once the line is the caller's. To be called once.
  void open();

  // The fields that are switched on, a bit for each.
  static u32 getEnabledFields(tTrace const& trace);

 private:
  // With the width and the truncation read once, as others may change them meanwhile.
  tTracePrefix(tTrace& trace, tOrigin const& origin, u64 startTime, u32 width, bool isTruncated);

  bool isPassed() const;
  u64 takeTimeDelta(bool isShown);
  void write(u64 timeDelta);
  void putField(u32 field, u64 timeDelta);
  void put(char const* text);
  void putNumber(u64 number, u32 radix);
  void putRun(char const* run, u64 length);
  void indent();
  void enterBlock();
  void leaveBlock();

  tTrace& trace;
  tOrigin const& origin;
  u64 const startTime;
  u64 const padTarget;
  u64 const fieldLimit;
  bool const isWithoutEnd;
  u64 count = 0;  // characters written of the prefix, fields and separators
};

}  // namespace nOXDIAG100
