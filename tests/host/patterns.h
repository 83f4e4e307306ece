#pragma once

#include <string>
#include <vector>

// Texts by regular expressions, in a source of their own: <regex> takes five seconds to compile
// with sanitizers.

// The text with $1 and so on in the replacement standing for groups of the pattern.
std::string replaceAll(std::string const& text, char const* pattern, char const* replacement);
std::string replaceFirst(std::string const& text, char const* pattern, char const* replacement);

// The text and the groups of the pattern, which all of the text is; or nothing.
std::vector<std::string> partsOf(std::string const& text, std::string const& pattern);

// The pattern's first group, wherever it is found.
std::vector<std::string> findAll(std::string const& text, std::string const& pattern);
