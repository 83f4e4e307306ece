#pragma once

#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

namespace oxdiagview {

// Appends `text` as a string of JSON, with its quotes. Bytes that are no UTF-8 become U+FFFD. What
// would steer a terminal is escaped.
void appendJsonText(std::string& json, std::string_view text);

// Appends an integer in decimal.
template <class tNumber>
void appendNumber(std::string& json, tNumber number) {
  char digits[24];
  char const* const end = std::to_chars(digits, std::end(digits), number).ptr;
  json.append(digits, static_cast<size_t>(end - digits));
}

}  // namespace oxdiagview
