#pragma once

#include <string_view>

// Ends a program that has printed its help or version: `good`, or `noOutput` and a sentence on
// standard error when that has not arrived.
int endOfHelp(std::string_view program, int good, int noOutput);
