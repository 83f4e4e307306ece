#include "oxdiagk/tWideTextList.h"

namespace nOXDIAG100 {
namespace {

constexpr u64 kMostCharacters = 0xFFFFFFFF;

}  // namespace

bool tWideTextList::push_back(_STL::wstring const& text) noexcept {
  size_t const before = characters.size();
  // The terminator of the text comes along.
  bool const isAdded = text.size() <= kMostCharacters &&
                       characters.append(text.c_str(), text.size() + 1) &&
                       lengths.push_back(static_cast<u32>(text.size()));
  if (isAdded) return true;
  characters.erase(before, characters.size() - before);
  return fail();
}

bool tWideTextList::assign(_STL::wstring const* texts, size_t count) noexcept {
  tWideTextList fresh;
  size_t const wanted = texts == nullptr ? 0 : count;
  size_t units = 0;
  for (size_t index = 0; index < wanted; ++index) units += texts[index].size() + 1;
  bool isDone = fresh.lengths.reserve(wanted) && (units == 0 || fresh.characters.reserve(units));
  for (size_t index = 0; isDone && index < wanted; ++index) isDone = fresh.push_back(texts[index]);
  if (!isDone) return fail();
  exchange(fresh);
  return true;
}

void tWideTextList::swap(tWideTextList& other) noexcept {
  exchange(other);
  swapFailure(other);
}

bool tWideTextList::copy(tWideTextList const& other) noexcept {
  tWideTextList fresh;
  bool const isDone = fresh.lengths.assign(other.lengths.data(), other.lengths.size()) &&
                      fresh.characters.assign(other.characters);
  if (!isDone) return fail();
  exchange(fresh);
  return true;
}

void tWideTextList::exchange(tWideTextList& other) noexcept {
  lengths.swap(other.lengths);
  characters.swap(other.characters);
}

}  // namespace nOXDIAG100
