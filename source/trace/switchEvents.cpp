#include "trace/switchEvents.h"

#include "trace/tPatience.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/eventLog.h"

namespace nOXDIAG100 {
namespace {

constexpr char kComponent[] = "oxdiagk";
constexpr char kLocation[] = "source/trace/tTrace - ";
constexpr char kNoSwitch[] = "the trace destination is not switched";
constexpr u32 kSeconds = kMostPatience / 1000;

void log(char const* what, u32 thread, char const* place) {
  _vexLogEvent(kComponent, kLocation, kVexEventFailure,
               "%s: thread 0x%X is still within %s after %u s\n", what,
               static_cast<unsigned>(thread), place, kSeconds);
}

void logUnknown(char const* what, char const* place) {
  _vexLogEvent(kComponent, kLocation, kVexEventFailure,
               "%s: another thread is still within %s after %u s\n", what, place, kSeconds);
}

}  // namespace

void logGivenUpSwitch(u32 thread) {
  log(kNoSwitch, thread, "its put");
}

void logGivenUpSwitchBesideLine(u32 thread) {
  if (thread == 0) {
    logUnknown(kNoSwitch, "a line");
  } else {
    log(kNoSwitch, thread, tTextsOnTheWay::isWithin(thread, nullptr) ? "its put" : "a line");
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
