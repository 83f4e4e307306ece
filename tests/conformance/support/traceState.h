#pragma once

// What a trace stream is set to, as text to compare.

#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"

// The inquired text of a stream in fixed storage of its own; one object at a time in a test.
inline constinit char traceStateStorage[2][2048] = {};

class tTraceState {
 public:
  explicit tTraceState(nOXDIAG100::tTrace& trace, u32 slot = 0) : text(traceStateStorage[slot]) {
    unsigned int needed = 0;
    trace.inquire(text, sizeof(traceStateStorage[0]), &needed);
    length = needed - 1;
  }

  char const* get() const { return text; }
  u32 getLength() const { return length; }

  // True when the text contains `piece` as a whole: a blank or the end follows it.
  bool has(char const* piece) const {
    size_t const size = __builtin_strlen(piece);
    for (char const* place = text; *place != 0; ++place) {
      if (startsWith(place, piece) && (place[size] == ' ' || place[size] == 0)) return true;
    }
    return false;
  }

  bool beginsWith(char const* piece) const { return startsWith(text, piece); }

  // The text without the calibration and what follows it, which differ from run to run.
  char const* withoutCalibration() {
    for (char* place = text; *place != 0; ++place) {
      if (startsWith(place, " --calibrate")) *place = 0;
    }
    return text;
  }

 private:
  static bool startsWith(char const* place, char const* piece) {
    for (; *piece != 0; ++place, ++piece) {
      if (*place != *piece) return false;
    }
    return true;
  }

  char* text;
  u32 length;
};

// The filter of a stream in its written form, "" when it has no terms.
struct tFilterText {
  char text[512];

  explicit tFilterText(nOXDIAG100::tTrace& trace) {
    text[0] = 0;
    if (trace.getFilter() != nullptr) trace.getFilter()->write(text, sizeof(text), nullptr);
  }
};
