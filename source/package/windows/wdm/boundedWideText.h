#pragma once

// Wide text into buffers of a given size, for what devices say of themselves. What fits is written
// and always terminated. Results:
//   STATUS_SUCCESS            the whole text is in the buffer
//   STATUS_BUFFER_OVERFLOW    (0x80000005) the text was cut
//   STATUS_INVALID_PARAMETER  (0xC000000D) room for no character at all, or for more than
//                             kMostWideCharacters: nothing is written
// PASSIVE_LEVEL.

#include "ntos/status.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

constexpr size_t kMostWideCharacters = 0x7FFFFFFF;  // with the terminator

// Formats as _vsnwprintf does; the first into a buffer whose size is given in bytes, of which an
// odd one is left alone, the second in characters.
OXDIAG_API NTSTATUS formatWideBytes(wchar_t* buffer, size_t bytes, wchar_t const* format, ...);
OXDIAG_API NTSTATUS formatWideCharacters(wchar_t* buffer, size_t characters, wchar_t const* format,
                                         ...);

// Copies a terminated text.
OXDIAG_API NTSTATUS copyWideCharacters(wchar_t* buffer, size_t characters, wchar_t const* text);

// Characters of a terminated text up to its terminator, at most `limit`.
OXDIAG_API size_t wideLength(wchar_t const* text, size_t limit);

}  // namespace nOXDIAG100
