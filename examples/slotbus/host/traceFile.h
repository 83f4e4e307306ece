#pragma once

#include <optional>
#include <string>

// What became of a trace that went to a file. The library passes over a write that fails, as a
// driver must; a person wants to know. Nothing when all of it is in the file, otherwise a sentence
// for the user.
std::optional<std::string> findTraceFileProblem();
