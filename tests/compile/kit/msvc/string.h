#pragma once

// What the family takes of the C library's header, for a check without that library.

#include <stddef.h>

extern "C" {
void* memcpy(void* to, void const* from, size_t size);
void* memmove(void* to, void const* from, size_t size);
void* memset(void* bytes, int value, size_t size);
size_t strlen(char const* text);
}
