#pragma once

// What a fuzz target is made of: it defines fuzzInput, and demands in it what must hold.

#include <string>

#include "ntos/types.h"

// One input, defined by the target. The modules are started, every fallible call works, and what
// the library allocates meanwhile must be given back at the return.
void fuzzInput(std::string const& input);

// `text` on one line, as a string literal of C.
std::string readable(std::string const& text);

// Stops the program, so that the fuzzer keeps the input, and tells what was demanded and seen.
[[noreturn]] void fail(char const* demanded, std::string const& seen);

// `seen` is text, or makes it: it is only asked for when the demand does not hold.
template <class Seen>
void demand(bool holds, char const* demanded, Seen seen) {
  if (!holds) fail(demanded, seen());
}

inline void demandEqual(std::string const& seen, std::string const& wanted, char const* what) {
  if (seen != wanted) fail(what, readable(seen) + "\n  wanted " + readable(wanted));
}
