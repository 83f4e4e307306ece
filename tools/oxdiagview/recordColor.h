#pragma once

#include <string_view>

#include "oxdiagview/tRecord.h"

namespace oxdiagview {

// What a terminal takes for a color.
constexpr std::string_view kFaint = "\x1b[90m";   // what is in front of a text
constexpr std::string_view kNoColor = "\x1b[0m";  // ends every color

// The color of a record's text; nothing for that of the terminal.
std::string_view colorOf(tRecord const& record);

}  // namespace oxdiagview
