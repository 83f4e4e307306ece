#pragma once

// One line on a stream of the test's own, and what arrives of it.

#include "support/recordingDestination.h"

struct tWrittenLine {
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};

  // All text that arrived, once the line is ended.
  char const* end() {
    trace.endl();
    return recorder.text();
  }

  // The text of one formatted line, newline included.
  template <class... tArguments>
  char const* putf(char const* format, tArguments... arguments) {
    recorder.clear();
    trace.putf(format, arguments...);
    return end();
  }
};
