#include "package/windows/wdm/boundedWideText.h"

#include "ntos/format.h"

namespace nOXDIAG100 {
namespace {

bool isUsableSize(size_t characters) {
  return characters != 0 && characters <= kMostWideCharacters;
}

NTSTATUS formatInto(wchar_t* buffer, size_t characters, wchar_t const* format, va_list arguments) {
  if (!isUsableSize(characters)) return STATUS_INVALID_PARAMETER;
  size_t const room = characters - 1;
  i32 const length = _vsnwprintf(buffer, room, format, arguments);
  bool const isCut = length < 0;
  if (isCut || static_cast<size_t>(length) == room) buffer[room] = L'\0';
  return isCut ? STATUS_BUFFER_OVERFLOW : STATUS_SUCCESS;
}

}  // namespace

NTSTATUS formatWideBytes(wchar_t* buffer, size_t bytes, wchar_t const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  NTSTATUS const status = formatInto(buffer, bytes / sizeof(wchar_t), format, arguments);
  va_end(arguments);
  return status;
}

NTSTATUS formatWideCharacters(wchar_t* buffer, size_t characters, wchar_t const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  NTSTATUS const status = formatInto(buffer, characters, format, arguments);
  va_end(arguments);
  return status;
}

NTSTATUS copyWideCharacters(wchar_t* buffer, size_t characters, wchar_t const* text) {
  if (!isUsableSize(characters)) return STATUS_INVALID_PARAMETER;
  size_t length = 0;
  while (length < characters - 1 && text[length] != L'\0') {
    buffer[length] = text[length];
    ++length;
  }
  buffer[length] = L'\0';
  return text[length] == L'\0' ? STATUS_SUCCESS : STATUS_BUFFER_OVERFLOW;
}

size_t wideLength(wchar_t const* text, size_t limit) {
  size_t length = 0;
  while (length < limit && text[length] != L'\0') ++length;
  return length;
}

}  // namespace nOXDIAG100
