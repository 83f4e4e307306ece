#pragma once

// Numbers in option words. Every option that takes a number reads it here.

#include "ntos/types.h"
#include "oxdiagk/api.h"

namespace nOXDIAG100 {

// Reads the number that `text` begins with, after leading blanks and tabs, in one of the forms
//
//     0x1F     "0x" (a small x) and hexadecimal digits of either case
//     31       decimal digits; leading zeros mean nothing, 007 is seven
//     2#11111  the radix in decimal, "#", and digits 0 to 9: the trace writes this form too
//
// The number ends at the first character that is no digit of its radix, so 2#102 is two and 12ab is
// twelve; what follows is not looked at. Without any digit the number is 0; there are no signs.
// Of a number, or a radix, of more than 32 bits the low 32 bits count. In radix 0 and 1 every
// number is 0. Null counts as empty text. Does not allocate; any IRQL, any thread.
OXDIAG_API u32 readNumber(char const* text);

// The same for a text of `length` bytes that need not be terminated.
OXDIAG_API u32 readNumber(char const* text, size_t length);

}  // namespace nOXDIAG100
