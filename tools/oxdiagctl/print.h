#pragma once

#include <string_view>

// Writes to standard output.
void print(std::string_view text);

// Whether all that was written has arrived there.
bool isPrinted();
