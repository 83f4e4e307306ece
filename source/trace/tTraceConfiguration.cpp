#include "config/savedSettings.h"
#include "config/tInquiryText.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceFilter.h"
#include "trace/tTraceOptionReader.h"
#include "trace/tTraceSwitchTable.h"

namespace nOXDIAG100 {

void tTrace::configure() {
}

void tTrace::configure(int argc, char** argv) {
  tConfigurationGuard const guard(configurationLock);
  tTraceOptionReader(*this, argc, argv).read();
}

void tTrace::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  tConfigurationGuard const guard(configurationLock);
  tInquiryText text(buffer, size);
  text.append(load(enabled) != 0 ? "--on" : "--off");
  unsigned int pieceNeeded = 0;
  destination->inquire(text.getPosition(), text.getRoom(), &pieceNeeded);
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
  text.finish(needed);
}

void tTrace::pushConfiguration() {
  tConfigurationGuard const guard(configurationLock);
  if (!makeRoom(savedConfigurations)) return;
  char* const text = copySettings(*this, kMemLongLived);
  if (text != nullptr) savedConfigurations.push_back(text);
}

void tTrace::popConfiguration() {
  tConfigurationGuard const guard(configurationLock);
  if (savedConfigurations.empty()) return;
  char* const text = savedConfigurations.back();
  savedConfigurations.pop_back();
  restoreSettings(*this, text);
}

u32 tTrace::countSavedConfigurations() {
  tConfigurationGuard const guard(configurationLock);
  return static_cast<u32>(savedConfigurations.size());
}

}  // namespace nOXDIAG100
