#pragma once

// The macros of the stream, for the component "rack": they write to *stream, and each evaluation of
// OXDIAG_TRACE_STREAM is counted.

#include "support/prefixedStream.h"

namespace {

constinit nOXDIAG100::tTrace* stream = nullptr;
constinit u32 streamUses = 0;

nOXDIAG100::tTrace& useStream() {
  ++streamUses;
  return *stream;
}

}  // namespace

#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0)
#define OXDIAG_TRACE_FILE "source/port.cpp"
#define OXDIAG_TRACE_STREAM useStream()
#include "oxdiagk/traceMacros.h"
