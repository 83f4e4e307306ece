#pragma once

#include <string>
#include <string_view>

// What somebody typed, for a sentence about it: in quotes, at most 60 characters of it, and a
// question mark for what cannot be printed.
std::string quoteWord(std::string_view word);
