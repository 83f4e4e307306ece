#pragma once

// Wide texts, side by side.

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "stl/borrowed_string.h"
#include "stl/failure_state.h"
#include "stl/string.h"
#include "stl/vector.h"

namespace nOXDIAG100 {

// An ordered list of wide texts in two blocks, one for their lengths and one for their characters:
// 6 bytes a text and 2 a character. A vector of strings takes 32 bytes a text and a block for each,
// many times what an empty or a short text takes of a stream.
//
// Operations that need memory report as those of _STL::vector do: false, hasFailed, and the old
// content untouched. Texts come from long-lived memory. Not locked. IRQL <= DISPATCH_LEVEL.
//
//     for (_STL::wstring const& text : texts) { ... good until the next one ... }
class OXDIAG_API tWideTextList : public _STL::failure_state {
 public:
  using value_type = _STL::wstring;

  class tIterator {
   public:
    tIterator(u32 const* textLength, wchar_t const* textCharacters, u32 const* endOfLengths)
        : length(textLength), end(endOfLengths), characters(textCharacters), text(L"", 0) {
      refer();
    }

    // Good until the iterator moves on.
    _STL::wstring const& operator*() const { return text.get(); }
    tIterator& operator++() {
      characters += *length++ + 1;
      refer();
      return *this;
    }
    bool operator!=(tIterator const& other) const { return length != other.length; }

   private:
    void refer() {
      if (length != end) text.refer(characters, *length);
    }

    u32 const* length;
    u32 const* end;
    wchar_t const* characters;
    _STL::borrowed_string<wchar_t> text;
  };

  tWideTextList() = default;

  // hasFailed tells whether the copy could be made; a failed copy is empty.
  // NOLINTNEXTLINE(bugprone-copy-constructor-init): the other's failure is not this one's.
  tWideTextList(tWideTextList const& other) noexcept : failure_state() { copy(other); }
  tWideTextList& operator=(tWideTextList const& other) noexcept {
    if (this != &other) copy(other);
    return *this;
  }

  size_t size() const { return lengths.size(); }
  bool empty() const { return lengths.empty(); }

  tIterator begin() const { return {lengths.begin(), characters.begin(), lengths.end()}; }
  tIterator end() const { return {lengths.end(), characters.end(), lengths.end()}; }

  // Adds a text behind the last one. A text of more than 0xFFFFFFFF characters counts as exhausted
  // memory.
  bool push_back(_STL::wstring const& text) noexcept;

  // Replaces the whole content by copies of `count` texts from `texts` on, null for none.
  bool assign(_STL::wstring const* texts, size_t count) noexcept;

  // Exchanges content and remembered failures.
  void swap(tWideTextList& other) noexcept;

  friend bool operator==(tWideTextList const& left, tWideTextList const& right) {
    return left.lengths == right.lengths && left.characters == right.characters;
  }

 private:
  bool copy(tWideTextList const& other) noexcept;
  void exchange(tWideTextList& other) noexcept;

  _STL::vector<u32> lengths;
  _STL::wstring characters;  // of all texts, each with a terminator
};

}  // namespace nOXDIAG100
