#include "vexk/eventLog.h"

#include <stdarg.h>

#include "ntos/format.h"
#include "ntos/time.h"
#include "tEventRing.h"
#include "vexk/debug.h"

namespace {

constexpr char const* kReasonNames[] = {"load", "unload", "open", "close"};
constexpr u32 kReasonCount = sizeof(kReasonNames) / sizeof(kReasonNames[0]);

constinit u32 leastPrintedLevel = kVexEventFailure;

// The line of an event while it is made; text beyond its room is cut.
class tEventLine {
 public:
  void append(char const* format, ...) VEX_PRINTF_FORMAT(2, 3) {
    va_list arguments;
    va_start(arguments, format);
    appendList(format, arguments);
    va_end(arguments);
  }

  void appendList(char const* format, va_list arguments) {
    u32 const room = kVexEventTextSize - 1 - length;
    i32 const written = _vsnprintf(text + length, room, format, arguments);
    length += written < 0 ? room : static_cast<u32>(written);
    text[length] = '\0';
  }

  void dropNewline() {
    if (length != 0 && text[length - 1] == '\n') text[--length] = '\0';
  }

  void log(u32 level) const {
    LARGE_INTEGER now;
    KeQuerySystemTime(&now);
    vexEventRing.add(level, now.QuadPart, text);
    if (level >= __atomic_load_n(&leastPrintedLevel, __ATOMIC_RELAXED)) ssprintf("%s\n", text);
  }

 private:
  u32 length = 0;
  char text[kVexEventTextSize] = "";
};

char const* orEmpty(char const* text) {
  return text == nullptr ? "" : text;
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
  line.log(kVexEventLife);
}

void _vexLogEvent(char const* component, char const* location, u32 level, char const* format, ...) {
  tEventLine line;
  line.append("%s %s", orEmpty(component), orEmpty(location));
  va_list arguments;
  va_start(arguments, format);
  line.appendList(orEmpty(format), arguments);
  va_end(arguments);
  line.dropNewline();
  line.log(level);
}

bool vexReadEvent(u64 leastNumber, tVexEvent& event) {
  return vexEventRing.read(leastNumber, event);
}

u32 vexPrintEvents(u32 leastLevel) {
  return __atomic_exchange_n(&leastPrintedLevel, leastLevel, __ATOMIC_RELAXED);
}
