#pragma once

#define COMPILER_IS_CONSTANT(value) __builtin_constant_p(value)
