#pragma once

#include <algorithm>
#include <string>

// Commands for bash that leave in COMPREPLY what may stand for the last of these words behind a
// program of `tools/FOLDER`.
inline std::string completionOf(std::string const& folder, std::string const& program,
                                std::string const& words) {
  std::string function = "_" + program;
  std::replace(function.begin(), function.end(), '-', '_');
  return "source " OXDIAG_SOURCE_DIR "/tools/" + folder + "/" + program + ".bash; COMP_WORDS=(" +
         program + " " + words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); " + function + "; ";
}

// Commands that print it in one line, sorted.
constexpr char kPrintSorted[] = "echo $(printf '%s\\n' \"${COMPREPLY[@]}\" | sort)";
