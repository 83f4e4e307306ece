#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What stands in a trace or a status is from strangers: it may be no UTF-8, and may be meant for a
// terminal.

// How many bytes the character at the beginning of `text` has; 0 if they are no UTF-8: too long a
// form, half of a pair, beyond the last character, or cut. `text` is not empty.
size_t lengthOfCharacter(std::string_view text);

// The number of a character of one to three bytes.
unsigned int codeOf(std::string_view character);

// Whether a terminal obeys a character instead of showing it: the control characters, those with
// numbers from 0x80 included, and what turns the direction of the text.
bool steersTerminal(std::string_view character);

// Appends `text` for a terminal: with a '?' for what would steer it, also for a byte that a
// terminal without UTF-8 takes for a control character, and blanks for a tab.
void appendForTerminal(std::string& shown, std::string_view text);
