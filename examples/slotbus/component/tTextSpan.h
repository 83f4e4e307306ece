#pragma once

#include <stddef.h>

namespace nSLOTBUS100 {

// A piece of a text that someone else owns: an address and a number of bytes, no terminator.
// Bytes may have any value, NUL included. Copies are cheap; nothing here allocates. Any IRQL.
class tTextSpan {
 public:
  constexpr tTextSpan() = default;
  constexpr tTextSpan(char const* first, size_t count) : text(first), length(count) {}

  constexpr char const* getText() const { return text; }
  constexpr size_t getLength() const { return length; }
  constexpr bool isEmpty() const { return length == 0; }
  constexpr char operator[](size_t index) const { return text[index]; }

  // The first `count` bytes, or all if there are fewer.
  tTextSpan getFirst(size_t count) const;

  // What follows the first `count` bytes, of which there must be as many.
  tTextSpan getBehind(size_t count) const;

  // Without the blanks and tabs at both ends.
  tTextSpan getTrimmed() const;

  bool contains(char wanted) const;
  bool beginsWith(char const* prefix) const;

  // Cuts off and returns what stands before the first `separator`, and removes the separator
  // too. Without a separator everything is returned and nothing is left. A reader that has to
  // know whether a separator stood there asks `contains` first.
  tTextSpan takeUntil(char separator);

 private:
  char const* text = nullptr;
  size_t length = 0;
};

}  // namespace nSLOTBUS100
