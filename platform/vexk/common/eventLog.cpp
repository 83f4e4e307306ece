#include "vexk/eventLog.h"

#include <stdarg.h>

#include "ntos/time.h"
#include "tEventLine.h"
#include "tEventRing.h"
#include "vexk/debug.h"

namespace {

constexpr char const* kReasonNames[] = {"load", "unload", "open", "close"};
constexpr u32 kReasonCount = sizeof(kReasonNames) / sizeof(kReasonNames[0]);

constinit u32 leastPrintedLevel = kVexEventFailure;

char const* orEmpty(char const* text) {
  return text == nullptr ? "" : text;
}

void log(u32 level, tEventLine const& line) {
  LARGE_INTEGER now;
  KeQuerySystemTime(&now);
  vexEventRing.add(level, now.QuadPart, line.getText());
  if (level >= __atomic_load_n(&leastPrintedLevel, __ATOMIC_RELAXED)) {
    ssprintf("%s\n", line.getText());
  }
}

}  // namespace

void pkgModulePackageEventLog(u32 reason, char const* fileName, char const* buildString,
                              char const* entryName, tModuleEntry* entry) {
  tEventLine line;
  line.append("%s ", orEmpty(fileName));
  if (reason < kReasonCount) {
    line.append("%s", kReasonNames[reason]);
  } else {
    line.append("reason %u", static_cast<unsigned>(reason));
  }
  line.append(": %s, %s at %p", orEmpty(buildString), orEmpty(entryName),
              reinterpret_cast<void*>(entry));
  log(kVexEventLife, line);
}

void _vexLogEvent(char const* component, char const* location, u32 level, char const* format, ...) {
  tEventLine line;
  line.append("%s %s", orEmpty(component), orEmpty(location));
  va_list arguments;
  va_start(arguments, format);
  line.appendList(orEmpty(format), arguments);
  va_end(arguments);
  line.dropNewline();
  log(level, line);
}

bool vexReadEvent(u64 leastNumber, tVexEvent& event) {
  return vexEventRing.read(leastNumber, event);
}

u32 vexPrintEvents(u32 leastLevel) {
  return __atomic_exchange_n(&leastPrintedLevel, leastLevel, __ATOMIC_RELAXED);
}
