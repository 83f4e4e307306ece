#pragma once

#include <string>

// Text as Windows has it, and as the program has it.
std::string utf8Of(wchar_t const* text);
std::wstring wideOf(std::string const& utf8);
