#pragma once

// What compilers give each in their own way, under one name for all. This is the one place that
// asks which compiler it is. Everything above uses standard C++20, and takes from here:
//
//   COMPILER_IS_CONSTANT(value)        see "vexk/compileTime.h"
//   COMPILER_KNOWS_LENGTH(text)        see there
//   COMPILER_REFUSES_IF(test, text)    behind a function's declaration: a call for which the
//                                      compiler can tell that `test` is true is an error
//   COMPILER_RETURNS_NONNULL           before a function's declaration: it never returns null
//   COMPILER_STAYS_APART               before a function's definition: it is not inlined
//   COMPILER_CALLER_LINE               as a default argument: the line of the call
//   nCompiler::loadRelaxed and others  words that threads share, see words.h of a compiler
//   nCompiler::copyBytes and others    runs of bytes, see bytes.h of a compiler
//   nCompiler::keepFrame()             the call before it stays a call, which returns here
//   nCompiler::readTimeStampCounter()  the processor's counter
//   nCompiler::kIsTrivial and others   what the compiler knows of a type, see traits.h
//   nCompiler::isMakingConstant()      whether the compiler runs the function itself
//
// The folders: `clang` and `gcc` what one of the two has, `gnu` what both have, `msvc` what the
// compiler that defines _MSC_VER alone has. There COMPILER_IS_CONSTANT and
// COMPILER_KNOWS_LENGTH are always false, and COMPILER_REFUSES_IF never refuses.

#if defined(__clang__)
#include "compiler/clang/constants.h"
#include "compiler/clang/refusals.h"
#include "compiler/gnu/bytes.h"
#include "compiler/gnu/calls.h"
#include "compiler/gnu/machine.h"
#include "compiler/gnu/words.h"
#elif defined(__GNUC__)
#include "compiler/gcc/constants.h"
#include "compiler/gcc/refusals.h"
#include "compiler/gnu/bytes.h"
#include "compiler/gnu/calls.h"
#include "compiler/gnu/machine.h"
#include "compiler/gnu/words.h"
#elif defined(_MSC_VER)
#include "compiler/msvc/bytes.h"
#include "compiler/msvc/calls.h"
#include "compiler/msvc/constants.h"
#include "compiler/msvc/machine.h"
#include "compiler/msvc/refusals.h"
#include "compiler/msvc/words.h"
#else
#error "a compiler that this family does not know"
#endif

#include "compiler/traits.h"
