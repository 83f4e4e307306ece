#pragma once

#include <optional>
#include <string>

// The bytes of a file, or of standard input for "-". Returns nothing when they cannot be read, or
// are more than 16 MiB; `problem` is then one sentence part for the user.
std::optional<std::string> readInput(std::string const& name, std::string& problem);
