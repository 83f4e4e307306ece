#pragma once

#include <string>
#include <string_view>

namespace oxdiagview {

// Appends `text` as a string of JSON, with its quotes. Bytes that are no UTF-8 become U+FFFD. What
// would steer a terminal is escaped.
void appendJsonText(std::string& json, std::string_view text);

}  // namespace oxdiagview
