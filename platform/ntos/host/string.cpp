#include "ntos/string.h"

#include <string.h>

namespace {

constexpr size_t kMostBytes = 65532;

u16 boundedBytes(wchar_t const* text) {
  size_t units = 0;
  while (units < kMostBytes / 2 && text[units] != 0) ++units;
  return static_cast<u16>(units * 2);
}

}  // namespace

void RtlInitUnicodeString(UNICODE_STRING* string, wchar_t const* source) {
  string->Buffer = const_cast<wchar_t*>(source);
  string->Length = source == nullptr ? u16{0} : boundedBytes(source);
  string->MaximumLength = source == nullptr ? u16{0} : static_cast<u16>(string->Length + 2);
}

void RtlCopyUnicodeString(UNICODE_STRING* string, UNICODE_STRING const* source) {
  if (source == nullptr) {
    string->Length = 0;
    return;
  }
  u16 const room = static_cast<u16>(string->MaximumLength & ~1u);
  u16 const length = source->Length < room ? source->Length : room;
  if (length > 0) memmove(string->Buffer, source->Buffer, length);
  string->Length = length;
  if (length + 2u <= string->MaximumLength) string->Buffer[length / 2] = 0;
}
