#pragma once

// A stream of the test's own whose lines are easily opened and read, for tests of prefixes.

#include "support/recordingDestination.h"

// One line of a component, as putPrefix takes it. Tests change what they are about.
struct tTestLine {
  char const* component = "rack";
  tSSVersion version = tSSVersion(1, 2, 3, tSSVersion::kPhaseReleased, 45, 0);
  unsigned int line = 42;
  char const* file = "source/io\\port.cpp";
  unsigned int verbosity = 100;
  nOXDIAG100::tTrace::tTraceType type = nOXDIAG100::tTrace::kTraceLine;

  nOXDIAG100::tTrace& openOn(nOXDIAG100::tTrace& trace) const {
    return trace.putPrefix(component, version, line, file, verbosity, type);
  }
};

struct tPrefixedStream {
  tRecordingDestination record;
  tPrivateTrace trace{record};

  void disableAllFields() {
    trace.disableComponentName();
    trace.disableComponentVersion();
    trace.disableLineNumber();
    trace.disableFileName();
    trace.disableFilePath();
    trace.disableThreadId();
    trace.disableTimeStamp();
    trace.disableTimeDelta();
    trace.disableVerbosity();
  }

  // Prefixes then hold the fields in full and nothing else.
  void showFieldsInFull() {
    trace.setMinPrefixWidth(0);
    trace.disableTruncation();
  }

  // Writes a line of a prefix alone and returns what arrived, newline included.
  char const* write(tTestLine const& line = {}) {
    record.clear();
    line.openOn(trace).endl();
    return record.text();
  }

  void writeBlockEntry() { write(withType(nOXDIAG100::tTrace::kBlockEntry)); }

  static tTestLine withType(nOXDIAG100::tTrace::tTraceType type) {
    tTestLine line;
    line.type = type;
    return line;
  }

  static tTestLine withVerbosity(unsigned int verbosity) {
    tTestLine line;
    line.verbosity = verbosity;
    return line;
  }
};
