#pragma once

#include <optional>
#include <string>

// The library drops what it does not understand in a filter without a word, as a driver must. A
// person at a terminal wants to be told: this function does the telling.
//
// Returns nothing when every term of `expression` is one that the library understands, and a
// sentence part such as "'colour==1' has no known field" otherwise. An empty expression is fine.
std::optional<std::string> findFilterProblem(std::string const& expression);

// The same for a term on one field without the field's name, as it may follow a switch of a prefix
// field: ==rack, >=200.
std::optional<std::string> findTermProblem(std::string const& term, bool isNumber);
