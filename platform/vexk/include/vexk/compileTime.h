#pragma once

#include "compiler/compiler.h"

// VEX_IS_CONSTANT(value): whether the compiler can work out a number. It is a constant itself, so
// it can choose between a value and another one that is constant anyway:
//
//     static constexpr char const* kName = VEX_IS_CONSTANT(name[0]) ? name : "";
//
// With a compiler that cannot tell, nothing counts as constant.
#define VEX_IS_CONSTANT(value) COMPILER_IS_CONSTANT(value)

// VEX_KNOWS_LENGTH(text): whether the compiler knows, where this is compiled into, how long the
// text is up to its terminator, as it does of a literal that is given to an inline function; then
// VEX_KNOWN_LENGTH(text) is that. It may always say no, as it does without optimisation.
#define VEX_KNOWS_LENGTH(text) COMPILER_KNOWS_LENGTH(text)
#define VEX_KNOWN_LENGTH(text) ::nCompiler::textLength(text)
