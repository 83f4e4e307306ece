#pragma once

// What the kernel's printf has of the usual conversions, for functions that hand a format on to it.

#include "compiler/compiler.h"
#include "vexk/api.h"

// A conversion is %, any of the flags - + blank # 0, a width, a precision, one of the lengths
// h l ll w I I32 I64, and one of the letters d i u o x X p c C s S Z or %. There are no
// floating-point numbers, and no lengths z, j, t and L.
namespace vexFormat {

constexpr bool isOneOf(char character, char const* set) {
  for (; *set != '\0'; ++set) {
    if (*set == character) return true;
  }
  return false;
}

constexpr char const* behind(char const* text, char const* set) {
  while (isOneOf(*text, set)) ++text;
  return text;
}

constexpr char const* behindLength(char const* text) {
  if (text[0] == 'l' && text[1] == 'l') return text + 2;
  if (text[0] == 'I' && text[1] == '6' && text[2] == '4') return text + 3;
  if (text[0] == 'I' && text[1] == '3' && text[2] == '2') return text + 3;
  return isOneOf(*text, "hlwI") ? text + 1 : text;
}

// From behind a percent sign to the letter.
constexpr char const* behindModifiers(char const* text) {
  text = behind(behind(text, "-+ #0"), "0123456789*");
  if (*text == '.') text = behind(text + 1, "0123456789*");
  return behindLength(text);
}

// Whether there is a conversion in the format that the kernel does not have. Null is no format.
constexpr bool hasForeignConversion(char const* format) {
  while (format != nullptr && *format != '\0') {
    if (*format++ != '%') continue;
    format = behindModifiers(format);
    if (!isOneOf(*format, "diuoxXpcCsSZ%")) return true;
    ++format;
  }
  return false;
}

}  // namespace vexFormat

// Behind a function with a parameter of that name: a constant format with a foreign conversion is
// an error of the call, where the compiler can say so.
#define VEX_KERNEL_FORMAT(format)                              \
  COMPILER_REFUSES_IF(vexFormat::hasForeignConversion(format), \
                      "the kernel does not print such a conversion")
