#pragma once

#include <stddef.h>

namespace ntoshost {

// Writes a text to standard error, unbuffered and in one piece if the file takes it.
void writeStandardError(char const* text, size_t length);

}  // namespace ntoshost
