#pragma once

#include <span>
#include <string_view>

// The candidate that somebody most likely meant who typed `word`: one that differs in a letter or
// two, case apart, or else one that begins with it. Empty when none is near.
std::string_view findNearestWord(std::string_view word,
                                 std::span<std::string_view const> candidates);
