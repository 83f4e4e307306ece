#pragma once

// What a child device says of itself in words: its hardware ids one behind the other, ended by an
// empty one, and its description. Paged memory: IRQL <= APC_LEVEL.

#include "vexk/iChildBus.h"

namespace nOXDIAG100 {

class tChildTexts {
 public:
  static constexpr u32 kLongestId = 201;       // characters
  static constexpr u32 kLongestIdList = 1024;  // characters with all terminators

  // Copies the texts of `description`. Returns 0, or with nothing taken
  //   kStatusBadArgument  there is no id, or one is missing, empty, too long or has a character
  //                       below 0x20, above 0x7F or a comma, or all of them are too long
  //   kStatusOutOfMemory
  i32 take(tChildDescription const& description);

  // Gives the copies back. Once, or again without effect.
  void giveBack();

  // Lengths are in characters with terminators.
  wchar_t const* getIds() const { return ids; }
  u32 getIdsLength() const { return idsLength; }
  u32 getFirstIdLength() const { return firstIdLength; }
  wchar_t const* getDescription() const { return text; }
  u32 getDescriptionLength() const { return textLength; }

 private:
  bool measure(tChildDescription const& description);
  bool measureId(wchar_t const* id);
  bool allocate();

  wchar_t* ids = nullptr;
  u32 idsLength = 0;
  u32 firstIdLength = 0;
  wchar_t* text = nullptr;
  u32 textLength = 0;
};

}  // namespace nOXDIAG100
