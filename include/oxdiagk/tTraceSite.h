#pragma once

#include "compiler/types.h"
#include "oxdiagk/tLineBuffer.h"
#include "vexk/tSSVersion.h"

namespace nOXDIAG100 {

// Where a line comes from, as its author says it: what tTrace::putPrefix is told of a place in the
// source. The texts may be null, which counts as empty text; they are the author's, and outlive the
// line.
struct tLineOrigin {
  char const* component;
  char const* file;
  tSSVersion version;
  u32 line;
};

// A place in the source whose component, version and file the compiler knows, with the beginning of
// the prefix that its lines have while a stream shows the fields that it shows at the start. It is
// a constant: the macros of "oxdiagk/traceMacros.h" make one for each of their places, and nothing
// of it is made while the program runs.
//
//     static constexpr tTraceSite site(tLineOrigin{"slotbus", __FILE__, kVersion, __LINE__});
//     if (tTrace* const line = trace.openLine(site, 110)) line->put("slot ").put(slot, 10).endl();
class tTraceSite : public tLineOrigin {
 public:
  static constexpr u32 kTextSize = tLineBuffer::kCopied;

  // Of nowhere, for a place that the compiler does not know.
  constexpr tTraceSite() : tLineOrigin{nullptr, nullptr, tSSVersion(), 0} {}

  explicit constexpr tTraceSite(tLineOrigin const& origin) : tLineOrigin(origin) {
    u32 length = addText(addText(0, "["), component);
    length = addNumber(addText(length, "--"), line);
    length = addText(addText(length, "--"), getLastPart(file));
    while (length < kTextSize) text[length++] = '-';
    if (hasNewline()) text[0] = '\0';
  }

  constexpr bool isSomewhere() const { return component != nullptr; }
  constexpr tLineOrigin const& getOrigin() const { return *this; }

  // The first kTextSize characters of the fields, with dashes behind them.
  constexpr char const* getText() const { return text; }

  // Whether a prefix may be copied from the text: a newline ends a line, which copying does not.
  constexpr bool isCopied() const { return text[0] != '\0'; }

 private:
  constexpr u32 addText(u32 length, char const* piece) {
    if (piece == nullptr) return length;
    while (*piece != '\0' && length < kTextSize) text[length++] = *piece++;
    return length;
  }

  constexpr u32 addNumber(u32 length, u32 number) {
    constexpr u32 kMostDigits = 10;
    char digits[kMostDigits + 1] = {};
    u32 first = kMostDigits;
    do {
      digits[--first] = static_cast<char>('0' + number % 10);
      number /= 10;
    } while (number != 0);
    return addText(length, digits + first);
  }

  // What follows the last slash or backslash.
  static constexpr char const* getLastPart(char const* path) {
    char const* part = path;
    for (; path != nullptr && *path != '\0'; ++path) {
      if (*path == '/' || *path == '\\') part = path + 1;
    }
    return part;
  }

  constexpr bool hasNewline() const {
    for (char const character : text) {
      if (character == '\n') return true;
    }
    return false;
  }

  char text[kTextSize] = {};  // without its first character when it is not to be copied
};

}  // namespace nOXDIAG100
