#include "vexk/userMemory.h"

#include <windows.h>

// The program is its own user: the system copies within it, and stops where there is no memory.

size_t vexCopyFromUser(void* to, u64 userAddress, size_t length) {
  SIZE_T copied = 0;
  ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<void const*>(userAddress), to, length,
                    &copied);
  return copied;
}

size_t vexCopyToUser(u64 userAddress, void const* from, size_t length) {
  SIZE_T copied = 0;
  WriteProcessMemory(GetCurrentProcess(), reinterpret_cast<void*>(userAddress), from, length,
                     &copied);
  return copied;
}
