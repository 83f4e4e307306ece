// The functions that the compiler calls on its own, as the kernel exports them elsewhere. Written
// so that it does not turn the loops back into calls of themselves.

#include <stddef.h>

extern "C" {

void* memcpy(void* to, void const* from, size_t size) {
  void* target = to;
  __asm__ volatile("rep movsb" : "+D"(target), "+S"(from), "+c"(size) : : "memory");
  return to;
}

void* memset(void* to, int value, size_t size) {
  void* target = to;
  __asm__ volatile("rep stosb" : "+D"(target), "+c"(size) : "a"(value) : "memory");
  return to;
}

int memcmp(void const* left, void const* right, size_t size) {
  unsigned char const volatile* a = static_cast<unsigned char const*>(left);
  unsigned char const volatile* b = static_cast<unsigned char const*>(right);
  for (; size != 0; --size, ++a, ++b) {
    int const difference = *a - *b;
    if (difference != 0) return difference;
  }
  return 0;
}

int strcmp(char const* left, char const* right) {
  unsigned char const volatile* a = reinterpret_cast<unsigned char const*>(left);
  unsigned char const volatile* b = reinterpret_cast<unsigned char const*>(right);
  for (;; ++a, ++b) {
    int const character = *a;
    int const difference = character - *b;
    if (difference != 0 || character == 0) return difference;
  }
}

size_t strlen(char const* text) {
  char const volatile* end = text;
  while (*end != 0) ++end;
  return static_cast<size_t>(end - text);
}
}
