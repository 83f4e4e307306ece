#include "config/savedSettings.h"
#include "config/tOptionWords.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {
iTraceDestination* tTrace::setDestination(iTraceDestination& next) {
  put("Switching trace destination to ").put(next.getDescription()).endl();
  iTraceDestination& former = *destination;
  char* const settings = copySettings(former, kMemScratch);
  former.close();
  destination = &next;
  iTraceDestination* const result = next.open() != 0 ? &former : fallBack(former, settings);
  _memDelete(settings);
  return result;
}

iTraceDestination* tTrace::fallBack(iTraceDestination& former, char const* settings) {
  tOptionWords const words(settings);
  destination = &former;
  if (words.getCount() != 0) former.configure(words.getCount(), words.getWords());
  if (former.open() != 0) {
    put("Trace destination couldn't be opened!").endl();
    put("Trace destination remains unchanged.").endl();
    return &former;
  }
  destination = &tVEXTraceDestination::getInstance();
  destination->open();
  put("Trace destination couldn't be opened and previous destination couldn't be restored!").endl();
  put("The trace destination has been changed to VEX print to debugger by default").endl();
  return destination;
}

}  // namespace nOXDIAG100
