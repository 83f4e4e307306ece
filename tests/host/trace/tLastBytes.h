#pragma once

#include <string.h>
#include <sys/mman.h>

#include <string>

#include "ntos/types.h"

// Bytes that end where memory ends.
class tLastBytes {
  static constexpr size_t kPage = 4096;

 public:
  explicit tLastBytes(size_t size)
      : pages(static_cast<char*>(
            mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))),
        bytes(pages + kPage - size) {
    mprotect(pages + kPage, kPage, PROT_NONE);
  }
  tLastBytes(void const* content, size_t size) : tLastBytes(size) { memcpy(bytes, content, size); }
  ~tLastBytes() { munmap(pages, 2 * kPage); }
  tLastBytes(tLastBytes const&) = delete;
  tLastBytes& operator=(tLastBytes const&) = delete;

  u64 address() const { return reinterpret_cast<u64>(bytes); }
  std::string text(size_t size) const { return std::string(bytes, size); }

 private:
  char* const pages;

 public:
  char* const bytes;
};
