#include "trace/switchEvents.h"

#include "trace/tLiveStreams.h"
#include "trace/tPatience.h"
#include "vexk/eventLog.h"

namespace nOXDIAG100 {
namespace {

constexpr char kComponent[] = "oxdiagk";
constexpr char kLocation[] = "source/trace/tTrace - ";
constexpr u32 kMillisecondsPerSecond = 1000;

void log(char const* what, u32 thread, char const* place) {
  _vexLogEvent(kComponent, kLocation, kVexEventFailure,
               "%s: thread 0x%X is still within %s after %u s\n", what,
               static_cast<unsigned>(thread), place, kMostPatience / kMillisecondsPerSecond);
}

}  // namespace

void logGivenUpSwitch(u32 thread) {
  char const* const what = "the trace destination is not switched";
  if (thread != 0) {
    log(what, thread, "its put");
  } else {
    log(what, tLiveStreams::findLineOwner(), "a line");
  }
}

void logGivenUpMutex(u32 thread) {
  log("the line mutex is not switched", thread, "the put of its line");
}

void logForcedLeave(u32 thread) {
  log("a trace destination that is destroyed is no longer used", thread, "its put");
}

void logGivenUpConfiguration(u32 thread) {
  log("the trace is not configured", thread, "the put of its destination, and configures it");
}

void logGivenUpEnd(u32 thread) {
  log("a trace destination is left open at the end", thread, "its put");
}

}  // namespace nOXDIAG100
