#include "vexk/userMemory.h"

#include "ntos/probe.h"

// An exception is caught only when it comes out of a call made inside __try, so each access stands
// in a function of its own. They count as they go, because nothing is returned from a fault. A page
// at a time, because the probe for writing touches all of what it is asked about.

namespace {

constexpr u32 kPageSize = 4096;
constexpr u32 kByteAlignment = 1;

size_t leftOnPage(u64 address) {
  return kPageSize - static_cast<size_t>(address % kPageSize);
}

size_t least(size_t left, size_t right) {
  return left < right ? left : right;
}

__attribute__((noinline)) void readGuarded(char* to, u64 from, size_t length,
                                           size_t volatile* copied) {
  auto const* source = reinterpret_cast<char const volatile*>(from);
  ProbeForRead(source, length, kByteAlignment);
  for (size_t i = 0; i < length; ++i) {
    to[i] = source[i];
    *copied = i + 1;
  }
}

__attribute__((noinline)) void writeGuarded(u64 to, char const* from, size_t length,
                                            size_t volatile* copied) {
  auto* target = reinterpret_cast<char volatile*>(to);
  ProbeForWrite(target, length, kByteAlignment);
  for (size_t i = 0; i < length; ++i) {
    target[i] = from[i];
    *copied = i + 1;
  }
}

size_t readChunk(char* to, u64 from, size_t length) {
  size_t volatile copied = 0;
  __try {
    readGuarded(to, from, length, &copied);
  } __except (1) {
  }
  return copied;
}

size_t writeChunk(u64 to, char const* from, size_t length) {
  size_t volatile copied = 0;
  __try {
    writeGuarded(to, from, length, &copied);
  } __except (1) {
  }
  return copied;
}

bool wraps(u64 address, size_t length) {
  return length > UINT64_MAX - address;
}

}  // namespace

size_t vexCopyFromUser(void* to, u64 userAddress, size_t length) {
  if (wraps(userAddress, length)) return 0;
  size_t done = 0;
  while (done < length) {
    u64 const at = userAddress + done;
    size_t const wanted = least(length - done, leftOnPage(at));
    size_t const copied = readChunk(static_cast<char*>(to) + done, at, wanted);
    done += copied;
    if (copied != wanted) break;
  }
  return done;
}

size_t vexCopyToUser(u64 userAddress, void const* from, size_t length) {
  if (wraps(userAddress, length)) return 0;
  size_t done = 0;
  while (done < length) {
    u64 const at = userAddress + done;
    size_t const wanted = least(length - done, leftOnPage(at));
    size_t const copied = writeChunk(at, static_cast<char const*>(from) + done, wanted);
    done += copied;
    if (copied != wanted) break;
  }
  return done;
}
