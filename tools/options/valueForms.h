#pragma once

#include <cstdint>
#include <string_view>

// Forms of values in option words, as the library reads them in full. What follows a number in a
// word the library passes over; here it makes the word no number.

// The largest number of an option word: the library keeps 32 bits.
constexpr uint32_t kLargestNumber = 0xFFFFFFFF;

// The largest number that the library writes as measured: it counts ticks in 64 bits.
constexpr uint64_t kLargestMeasured = ~uint64_t{0};

// Decimal digits, 0x and hexadecimal digits, or radix#digits with digits below the radix. The
// library drops the bits above 32 of a number or radix; see isNumberAtMost.
bool isNumberWord(std::string_view word);

// Whether the value of a number word is at most `limit`. Its radix may have 32 bits, or be as large
// as `limit` where that is larger.
bool isNumberAtMost(std::string_view word, uint64_t limit);

// Two numbers with a colon between them, as in 5:0; and whether the library reads both as they are.
bool isTokenWord(std::string_view word);
bool isTokenInRange(std::string_view word);

// A drive letter, a colon, a slash or backslash, and a path; 127 characters at most.
bool isFileNameWord(std::string_view word);
