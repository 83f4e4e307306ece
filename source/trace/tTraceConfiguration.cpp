#include "config/options/savedSettings.h"
#include "config/options/tInquiryText.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "trace/tStreamLock.h"
#include "trace/tTraceOptionReader.h"
#include "trace/tTraceSwitchTable.h"

namespace nOXDIAG100 {

void tTrace::configure() {
}

void tTrace::configure(int argc, char** argv) {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  tTraceOptionReader(*this, argc, argv).read();
}

void tTrace::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tStreamGuard const guard(*this);
  tInquiryText text(buffer, size);
  if (guard.isHeld()) writeSettings(text);
  text.finish(needed);
}

void tTrace::writeSettings(tInquiryText& text) {
  text.append(load(enabled) != 0 ? "--on" : "--off");
  unsigned int pieceNeeded = 0;
  getDestination()->inquire(text.getPosition(), text.getRoom(), &pieceNeeded);
  text.skip(pieceNeeded);
  for (u32 index = 0; index < tTraceSwitchTable::kMutex; ++index) {
    tTraceSwitchTable::tSwitch const& entry = tTraceSwitchTable::entries[index];
    text.append(" ").append(entry.option).appendOnOff(load(this->*entry.value) != 0);
  }
  text.append(" --prefixwidth ").appendNumber(load(minPrefixWidth));
  if (filter != nullptr) {
    unsigned int filterNeeded = 0;
    filter->write(text.getPosition(), text.getRoom(), &filterNeeded);
    text.skip(filterNeeded);
  }
  text.append(" --mutex").appendOnOff(load(mutex) != 0).append(" --calibrate");
  for (u64 const& offset : calibrationOffsets) text.append(" ").appendNumber(load(offset));
}

void tTrace::pushConfiguration() {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  if (!makeRoom(savedConfigurations)) return;
  char* const text = copySettings(*this, kMemLongLived);
  if (text != nullptr) savedConfigurations.push_back(text);
}

void tTrace::popConfiguration() {
  tStreamGuard const guard(*this);
  if (!guard.isHeld()) return;
  if (savedConfigurations.empty()) return;
  char* const text = savedConfigurations.back();
  savedConfigurations.pop_back();
  restoreSettings(*this, text);
}

u32 tTrace::countSavedConfigurations() {
  tStreamGuard const guard(*this);
  return guard.isHeld() ? static_cast<u32>(savedConfigurations.size()) : 0;
}

}  // namespace nOXDIAG100
