#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

// Eight bytes of a text in one number, the first in its lowest bits.

// A number whose eight bytes are all `byte`.
constexpr uint64_t eightOf(unsigned char byte) {
  return 0x0101'0101'0101'0101u * byte;
}

// The place of the first byte of `text` whose highest bit `mark` sets; the size if there is none.
// `mark` is given eight bytes at a time, at the end with blanks behind them, which it leaves alone.
// Behind the first byte that it means it may set more.
template <class tMark>
size_t findMarked(std::string_view text, tMark const& mark) {
  for (size_t place = 0; place < text.size(); place += sizeof(uint64_t)) {
    uint64_t word = eightOf(' ');
    size_t const rest = text.size() - place;
    if (rest >= sizeof(word)) {
      std::memcpy(&word, text.data() + place, sizeof(word));
    } else {
      std::memcpy(&word, text.data() + place, rest);
    }
    uint64_t const marked = mark(word) & eightOf(0x80);
    if (marked != 0) return place + static_cast<size_t>(std::countr_zero(marked)) / 8;
  }
  return text.size();
}

// Marks what is no printable ASCII.
constexpr uint64_t markUnprintable(uint64_t word) {
  return word | (word - eightOf(' ')) | (word + eightOf(1));
}
