// Images in memory that no linker made. Nothing is read outside of their pages; what is missing at
// the end of the last one is zero.

#include "windows/tImageHeaders.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "support/fuzzing.h"

namespace {

constexpr size_t kPage = 0x1000;
constexpr size_t kMostPages = 16;

struct tPages {
  char const* base;
  size_t size;
  size_t missing;  // a page that is not in memory
};
tPages pages;

bool isPresent(void const* address) {
  auto const place = reinterpret_cast<u64>(address) - reinterpret_cast<u64>(pages.base);
  return place < pages.size && place / kPage != pages.missing;
}

bool isTerminated(tLoadedModule const& module) {
  return std::memchr(module.name, '\0', sizeof(module.name)) != nullptr;
}

void readImage(char const* image, size_t size, size_t missing) {
  pages = {image, size, missing};
  tImageHeaders const headers(image, isPresent);
  tLoadedModule module = {};
  if (headers.areGood()) headers.describe(module);
  demand(isTerminated(module), "a name has an end", [] { return "none"; });
  demand(module.identitySize == 0 || module.identitySize == 20, "an identity is whole",
         [&] { return std::to_string(module.identitySize); });
}

}  // namespace

void fuzzInput(std::string const& input) {
  size_t const count = 1 + std::min(input.size() / kPage, kMostPages - 1);
  // Of exactly that size, so that the address sanitizer sees every read behind it.
  std::unique_ptr<char[]> const image(new char[count * kPage]());
  input.copy(image.get(), count * kPage);
  for (size_t missing = 0; missing <= count; ++missing) {
    readImage(image.get(), count * kPage, missing);
  }
}
