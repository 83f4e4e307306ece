#pragma once

// This compiler has no way to ask: nothing counts as constant.
#define COMPILER_IS_CONSTANT(value) false
#define COMPILER_KNOWS_LENGTH(text) false
