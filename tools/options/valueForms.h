#pragma once

#include <string_view>

// Forms of values in option words, as the library reads them in full. What follows a number in a
// word the library passes over; here it makes the word no number.

// Decimal digits, 0x and hexadecimal digits, or radix#digits.
bool isNumberWord(std::string_view word);

// Two numbers with a colon between them, as in 5:0.
bool isTokenWord(std::string_view word);

// A drive letter, a colon, a slash or backslash, and a path; 127 characters at most.
bool isFileNameWord(std::string_view word);
