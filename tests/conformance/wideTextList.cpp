// Lists of wide texts.

#include "conformance/harness.h"
#include "oxdiagk/tWideTextList.h"

using _STL::wstring;
using nOXDIAG100::tWideTextList;

namespace {

wchar_t const* const kTexts[] = {L"", L"a", L"slot 12", L"", L"b"};

tWideTextList samples() {
  tWideTextList list;
  for (wchar_t const* text : kTexts) EXPECT_TRUE(list.push_back(wstring(text)));
  return list;
}

// Whether the list holds the samples, `rounds` times.
bool holdsSamples(tWideTextList const& list, u32 rounds = 1) {
  u32 index = 0;
  for (wstring const& text : list) {
    if (!(text == kTexts[index++ % 5])) return false;
  }
  return index == 5 * rounds && list.size() == 5 * rounds;
}

}  // namespace

TEST(WideTextList, IsEmptyAtFirst) {
  tWideTextList const list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.size(), size_t{0});
  EXPECT_FALSE(list.begin() != list.end());
  EXPECT_FALSE(list.hasFailed());
}

TEST(WideTextList, HoldsItsTextsInOrder) {
  EXPECT_TRUE(holdsSamples(samples()));
}

TEST(WideTextList, HoldsThemWhenItHasGrown) {
  tWideTextList list;
  for (u32 round = 0; round < 100; ++round) {
    for (wchar_t const* text : kTexts) EXPECT_TRUE(list.push_back(wstring(text)));
  }
  EXPECT_TRUE(holdsSamples(list, 100));
}

TEST(WideTextList, KeepsNULInATextAndATerminatorBehindIt) {
  tWideTextList list;
  wstring const text(L"a\0b", 3);
  list.push_back(text);
  list.push_back(wstring(L"c"));
  EXPECT_TRUE(*list.begin() == text);
  ASSERT_EQ((*list.begin()).size(), size_t{3});
  EXPECT_EQ((*list.begin()).c_str()[3], L'\0');
}

TEST(WideTextList, IsAssignedFromStrings) {
  wstring const texts[] = {wstring(kTexts[0]), wstring(kTexts[1]), wstring(kTexts[2]),
                           wstring(kTexts[3]), wstring(kTexts[4])};
  tWideTextList list = samples();
  EXPECT_TRUE(list.assign(texts, 5));
  EXPECT_TRUE(holdsSamples(list));
  constexpr size_t kCounts[] = {0, 3};
  for (size_t count : kCounts) {
    list = samples();
    EXPECT_TRUE(list.assign(nullptr, count));
    EXPECT_TRUE(list.empty());
  }
}

TEST(WideTextList, IsCopied) {
  tWideTextList const list = samples();
  tWideTextList const copy(list);
  tWideTextList assigned;
  assigned.push_back(wstring(L"old"));
  assigned = list;
  EXPECT_TRUE(holdsSamples(copy));
  EXPECT_TRUE(holdsSamples(assigned));
  tWideTextList const& self = assigned;
  assigned = self;
  EXPECT_TRUE(holdsSamples(assigned));
}

TEST(WideTextList, IsSwapped) {
  tWideTextList one = samples();
  tWideTextList other;
  one.swap(other);
  EXPECT_TRUE(one.empty());
  EXPECT_TRUE(holdsSamples(other));
}

TEST(WideTextList, EqualsWhatHoldsTheSameTexts) {
  tWideTextList const one = samples();
  tWideTextList other = samples();
  EXPECT_TRUE(one == other);
  other.push_back(wstring());
  EXPECT_FALSE(one == other);
  EXPECT_TRUE(tWideTextList() == tWideTextList());
}

// With a terminator as a character of the one and the end of the other.
TEST(WideTextList, KnowsWhereATextEnds) {
  tWideTextList one;
  tWideTextList other;
  one.push_back(wstring(L"a\0b", 3));
  other.push_back(wstring(L"a"));
  other.push_back(wstring(L"b"));
  EXPECT_FALSE(one == other);
}
