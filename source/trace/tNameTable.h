#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

// A number, and where its name begins in the texts of its table.
struct tNameRow {
  u32 number;
  u32 place;
};

// Names of numbers, for lookups in logarithmic time. It is a constant of static storage and holds
// no addresses but two, so the rows take 8 bytes each beside the texts.
class tNameTable {
 public:
  template <u32 kCount>
  constexpr tNameTable(tNameRow const (&rows)[kCount], void const* texts)
      : rows(rows), count(kCount), texts(texts) {}

  // Null for a number without a name.
  char const* find(u32 number) const {
    u32 first = 0;
    u32 end = count;
    while (first != end) {
      u32 const middle = (first + end) / 2;
      if (rows[middle].number < number) {
        first = middle + 1;
      } else {
        end = middle;
      }
    }
    bool const isFound = first != count && rows[first].number == number;
    return isFound ? static_cast<char const*>(texts) + rows[first].place : nullptr;
  }

  // Every number stands behind smaller ones.
  constexpr bool isSorted() const {
    for (u32 index = 1; index < count; ++index) {
      if (rows[index].number <= rows[index - 1].number) return false;
    }
    return true;
  }

 private:
  tNameRow const* const rows;
  u32 const count;
  void const* const texts;
};

}  // namespace nOXDIAG100
