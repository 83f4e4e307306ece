#include "config/options/savedSettings.h"
#include "config/options/tInquiryText.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "trace/tStreamLock.h"
#include "trace/tTraceOptionReader.h"
#include "trace/tTraceSwitch.h"

namespace nOXDIAG100 {
namespace {

// Writes what has an operation to write itself.
template <class Write>
void appendWritten(tInquiryText& text, Write write) {
  unsigned int needed = 0;
  write(text.getPosition(), text.getRoom(), &needed);
  text.skip(needed);
}

void writeSettings(tTraceParts& stream, tInquiryText& text) {
  tLineShape const shape = stream.getShape();
  text.append(shape.isOn(tLineShape::kEnabled) ? "--on" : "--off");
  appendWritten(text, [&](char* buffer, unsigned int size, unsigned int* needed) {
    stream.slot.get()->inquire(buffer, size, needed);
  });
  for (tTraceSwitch const& entry : kTraceSwitches) {
    if (entry.which == tLineShape::kMutex) break;
    text.append(" --").append(entry.name).appendOnOff(shape.isOn(entry.which));
  }
  text.append(" --prefixwidth ").appendNumber(shape.getWidth());
  if (stream.filter != nullptr) {
    appendWritten(text, [&](char* buffer, unsigned int size, unsigned int* needed) {
      stream.filter->write(buffer, size, needed);
    });
  }
  text.append(" --mutex").appendOnOff(shape.isOn(tLineShape::kMutex)).append(" --calibrate");
  for (u32 index = 0; index < tLineClock::kOffsetCount; ++index) {
    text.append(" ").appendNumber(stream.clock.getOffset(index));
  }
}

}  // namespace

void tTrace::configure() {
}

void tTrace::configure(int argc, char** argv) {
  tStreamGuard const guard(parts);
  if (!guard.isHeld()) return;
  tTraceOptionReader(parts, argc, argv).read();
}

void tTrace::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tStreamGuard const guard(parts);
  tInquiryText text(buffer, size);
  if (guard.isHeld()) writeSettings(parts, text);
  text.finish(needed);
}

void tTrace::pushConfiguration() {
  tStreamGuard const guard(parts);
  if (!guard.isHeld()) return;
  if (!makeRoom(parts.savedConfigurations)) return;
  char* const text = copySettings(*this, kMemLongLived);
  if (text != nullptr) parts.savedConfigurations.push_back(text);
}

void tTrace::popConfiguration() {
  tStreamGuard const guard(parts);
  if (!guard.isHeld()) return;
  if (parts.savedConfigurations.empty()) return;
  char* const text = parts.savedConfigurations.back();
  parts.savedConfigurations.pop_back();
  restoreSettings(*this, text);
}

u32 tTrace::countSavedConfigurations() {
  tStreamGuard const guard(parts);
  return guard.isHeld() ? static_cast<u32>(parts.savedConfigurations.size()) : 0;
}

}  // namespace nOXDIAG100
