#pragma once

#include <stdarg.h>

#include "ntos/types.h"

extern "C" {

// Formats into `buffer` of `count` characters, as DbgPrint does, but for wide text: `%s` takes
// UTF-16 and `%S` narrow text. Returns the characters written, without a terminator; when the text
// fills the buffer there is NO terminator, and when it does not fit the result is -1.
// PASSIVE_LEVEL.
NTOS_IMPORT i32 _vsnwprintf(wchar_t* buffer, size_t count, wchar_t const* format,
                            va_list arguments);

// The same for bytes: `%s` takes narrow text. PASSIVE_LEVEL for `%S` and its like, else any IRQL.
NTOS_IMPORT i32 _vsnprintf(char* buffer, size_t count, char const* format, va_list arguments);
}
