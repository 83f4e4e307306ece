#include "trace/tFormerSettings.h"

#include "config/options/tOptionWords.h"
#include "oxdiagk/iTraceDestination.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

tFormerSettings::tFormerSettings(iTraceDestination& destination) {
  unsigned int needed = 0;
  destination.inquire(nullptr, 0, &needed);
  bool const isShort = needed <= kTextSize;
  if (isShort && read(destination, shortText, kTextSize, shortWords, kWordCapacity)) return;
  readLong(destination, needed);
}

tFormerSettings::~tFormerSettings() {
  _memDelete(longPlace);
}

// False when the text, or the number of its words, has no room.
bool tFormerSettings::read(iTraceDestination& destination, char* buffer, u32 size, char** room,
                           int capacity) {
  unsigned int written = 0;
  buffer[0] = 0;
  destination.inquire(buffer, size, &written);
  if (written > size) return false;
  count = cutOptionWords(buffer, room, capacity);
  words = room;
  return count >= 0;
}

// Every second character may begin a word.
void tFormerSettings::readLong(iTraceDestination& destination, u32 size) {
  u64 const capacity = size / 2 + 1;
  i32 status = 0;
  longPlace = _memNewUsingCRT(capacity * sizeof(char*) + size, kMemScratch, status);
  if (longPlace == nullptr) return;
  char** const room = static_cast<char**>(longPlace);
  read(destination, reinterpret_cast<char*>(room + capacity), size, room,
       static_cast<int>(capacity));
}

void tFormerSettings::restore(iTraceDestination& destination) {
  if (count > 0) destination.configure(count, words);
}

}  // namespace nOXDIAG100
