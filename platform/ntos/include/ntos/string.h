#pragma once

#include "ntos/types.h"

extern "C" {

// Makes `string` stand for the terminated text `source`, which stays the caller's; null gives an
// empty string without a buffer. A text above 65532 bytes is cut.
// IRQL <= DISPATCH_LEVEL, if the text may be touched there.
NTOS_IMPORT void RtlInitUnicodeString(UNICODE_STRING* string, wchar_t const* source);

// Copies the text of `source` into the buffer that `string` has, cut at MaximumLength; a terminator
// follows if there is room. A null `source` empties the string.
// IRQL <= DISPATCH_LEVEL, if both texts may be touched there.
NTOS_IMPORT void RtlCopyUnicodeString(UNICODE_STRING* string, UNICODE_STRING const* source);
}
