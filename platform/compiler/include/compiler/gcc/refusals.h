#pragma once

#define COMPILER_REFUSES_IF(test, text)
