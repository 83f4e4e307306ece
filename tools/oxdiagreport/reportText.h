#pragma once

#include <string>
#include <string_view>

#include "stl/string.h"

// Texts of statuses as a terminal and other programs take them. A saved status may hold anything.

// UTF-16 as UTF-8; half a surrogate pair becomes U+FFFD.
std::string utf8Of(_STL::wstring const& text);

// Bytes as UTF-8, each as the character of its number.
std::string utf8Of(char const* bytes);

// Control characters as \xNN, except line feeds, and what turns the direction of a text as \uNNNN,
// so that no text can steer a terminal.
std::string withoutControls(std::string_view utf8);

// The same of a text that has to stay in one line: line feeds too.
std::string inOneLine(std::string_view utf8);

// What withoutControls escapes, as \uNNNN within JSON.
std::string withControlsForJson(std::string_view json);
