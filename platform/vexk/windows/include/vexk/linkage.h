#pragma once

// How names cross a module border on Windows.
#define VEX_EXPORT __declspec(dllexport)
#define VEX_IMPORT __declspec(dllimport)

// The 32-bit types are `long` here, so a check of %d and %u would refuse calls that are right.
#define VEX_PRINTF_FORMAT(formatIndex, firstIndex)
