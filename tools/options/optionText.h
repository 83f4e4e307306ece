#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Option words as one text, cut and joined as the library cuts it (tConfigurable::configure of the
// library's headers): blanks separate words, double quotes hold one together.

std::vector<std::string> splitOptionText(std::string_view text);

// The text that is cut into these words. Nothing when there is none, because a word that needs
// quotes has one in it.
std::optional<std::string> joinOptionWords(std::vector<std::string> const& words);
