#include "oxdiagk/tCTFTraceDestination.h"

#include "trace/textWords.h"

namespace nOXDIAG100 {

tCTFTraceDestination::tCTFTraceDestination(char* buffer, i32& start, i32 size, tStatus2* /*status*/)
    : captured(buffer), position(&start), capacity(size > 0 ? size - 1 : 0) {
  if (captured != nullptr && size > 0 && start < capacity) captured[capacity] = 0;
}

tCTFTraceDestination::~tCTFTraceDestination() {
  leaveStream();
}

// The terminator is captured when there is room for it, and the position stays before it.
iTraceDestination& tCTFTraceDestination::put(char const* text) {
  if (text == nullptr) return *this;
  u64 const length = __builtin_strlen(text);
  capture(text, length + 1, length);
  return *this;
}

iTraceDestination& tCTFTraceDestination::put(char const* text, unsigned int length) {
  if (text != nullptr) capture(text, length, length);
  return *this;
}

// Works with the position as it finds it, so that threads at once cannot lead it out of the buffer.
void tCTFTraceDestination::capture(char const* bytes, u64 size, u64 advance) {
  i32 const start = __atomic_load_n(position, __ATOMIC_RELAXED);
  if (captured == nullptr || start < 0 || start >= capacity) return;
  u64 const room = static_cast<u64>(capacity - start);
  copyText(captured + start, bytes, size < room ? size : room);
  i32 const step = static_cast<i32>(advance < room ? advance : room);
  __atomic_store_n(position, start + step, __ATOMIC_RELAXED);
}

void tCTFTraceDestination::configure(int argc, char** const argv) {
  iTraceDestination::configure(argc, argv);
}

char* tCTFTraceDestination::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  return inquireText(" --destination ctf", buffer, size, needed);
}

u32 tCTFTraceDestination::open() {
  return iTraceDestination::open();
}

void tCTFTraceDestination::close() {
  iTraceDestination::close();
}

char const* tCTFTraceDestination::getDescription() const {
  return "CTF log file";
}

}  // namespace nOXDIAG100
