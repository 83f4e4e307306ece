#include "config/tInquiryCopy.h"

#include "oxdiagk/instanceRegistry.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {
namespace {

u32 smaller(u64 a, u32 b) {
  return a < b ? static_cast<u32>(a) : b;
}

// Filled with zeros, because an object's word on what it has written is not enough to let bytes of
// the kernel's memory out.
char* newText(u32 size) {
  i32 status = 0;
  void* const text = _memNewUsingCRT(size, kMemLongLived, status);
  if (text != nullptr) __builtin_memset(text, 0, size);
  return static_cast<char*>(text);
}

}  // namespace

// Somebody may configure the object between two inquiries, and then the text is inquired once more
// when it has outgrown its memory though not the buffer.
tInquiryCopy::tInquiryCopy(u32 handle, u32 room) {
  inquire(handle, nullptr, 0, &needed);
  while (size < smaller(needed, room)) {
    inquireAgain(handle, nextSize(room));
    if (text == nullptr) return;
  }
}

tInquiryCopy::~tInquiryCopy() {
  _memDelete(text);
}

// At least twice as much at each repetition, so that a text that always grows ends them.
u32 tInquiryCopy::nextSize(u32 room) const {
  u64 const twice = 2 * u64{size};
  return smaller(twice < needed ? needed : twice, room);
}

void tInquiryCopy::inquireAgain(u32 handle, u32 newSize) {
  _memDelete(text);
  text = newText(newSize);
  size = text == nullptr ? 0 : newSize;
  if (text == nullptr) return;
  needed = 0;
  inquire(handle, text, size, &needed);
}

}  // namespace nOXDIAG100
