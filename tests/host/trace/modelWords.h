#pragma once

// The rules of splitting option text, once more: a machine that takes one character after the
// other.

#include <string>
#include <vector>

using tWords = std::vector<std::string>;

bool isModelBlank(char character);

tWords modelWords(std::string const& text);
