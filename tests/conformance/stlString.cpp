#include "conformance/harness.h"
#include "stl/borrowed_string.h"
#include "stl/string.h"

// Every member compiles on every target, also those that no test calls.
template class _STL::basic_string<char>;
template class _STL::basic_string<wchar_t>;
template class _STL::basic_string<wchar_t, _STL::kMemoryScratch>;

// The text "0123456789" repeated until it has `length` characters.
static _STL::string digits(size_t length) {
  _STL::string text;
  for (size_t i = 0; i < length; ++i) {
    text.push_back(static_cast<char>('0' + i % 10));
  }
  return text;
}

TEST(StlString, NewTextIsEmptyAndTerminated) {
  _STL::string text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.size(), size_t{0});
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_FALSE(text.hasFailed());
}

TEST(StlString, ConstructionCopiesTheCallersText) {
  char source[] = "slot";
  _STL::string text(source);
  source[0] = 'X';
  EXPECT_STREQ(text.c_str(), "slot");
  EXPECT_EQ(text.size(), size_t{4});
}

static char const* noText() {
  return nullptr;
}

TEST(StlString, NullTextCountsAsEmpty) {
  _STL::string text(noText());
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(text.append(nullptr, 5));
  EXPECT_TRUE(text.assign(noText()));
  EXPECT_EQ(text.compare(noText()), i32{0});
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_TRUE(text.assign("abc"));
  EXPECT_TRUE(text.insert(1, nullptr, 5));
  EXPECT_GT(text.compare(nullptr, 5), i32{0});
  EXPECT_STREQ(text.c_str(), "abc");
}

TEST(StlString, AppendAddsBehindTheText) {
  _STL::string text("slot");
  EXPECT_TRUE(text.append(" 12"));
  EXPECT_TRUE(text.append(", rack", 2));
  EXPECT_TRUE(text.append(_STL::string("bus")));
  EXPECT_STREQ(text.c_str(), "slot 12, bus");
}

TEST(StlString, TextWithLengthKeepsInnerTerminators) {
  _STL::string text("a\0b", 3);
  ASSERT_EQ(text.size(), size_t{3});
  EXPECT_EQ(text[2], 'b');
  EXPECT_STREQ(text.c_str(), "a");
}

TEST(StlString, PushBackGrowsCharacterByCharacter) {
  _STL::string const text = digits(1000);
  EXPECT_EQ(text.size(), size_t{1000});
  EXPECT_EQ(text[999], '9');
  EXPECT_EQ(text.c_str()[1000], '\0');
}

TEST(StlString, EveryLengthAroundTheFirstCapacityIsTerminated) {
  for (size_t length = 14; length <= 17; ++length) {
    _STL::string const text = digits(length);
    ASSERT_EQ(text.size(), length);
    EXPECT_EQ(text.c_str()[length], '\0');
  }
}

TEST(StlString, AppendOfItselfDoublesTheText) {
  _STL::string text("abcdefghij");
  EXPECT_TRUE(text.append(text));
  EXPECT_TRUE(text.append(text.c_str()));
  EXPECT_STREQ(text.c_str(), "abcdefghijabcdefghijabcdefghijabcdefghij");
}

TEST(StlString, AppendOfOwnPieceNeedsNoGrowthToBeSafe) {
  _STL::string text("abc");
  ASSERT_TRUE(text.reserve(100));
  EXPECT_TRUE(text.append(text.c_str() + 1, 2));
  EXPECT_STREQ(text.c_str(), "abcbc");
}

TEST(StlString, AssignReplacesTheText) {
  _STL::string text("a longer text than the other");
  EXPECT_TRUE(text.assign("short"));
  EXPECT_STREQ(text.c_str(), "short");
  EXPECT_TRUE(text.assign("shorter", 0));
  EXPECT_STREQ(text.c_str(), "");
}

TEST(StlString, AssignOfOwnMiddleKeepsJustThat) {
  _STL::string text("abcdef");
  EXPECT_TRUE(text.assign(text.c_str() + 2, 3));
  EXPECT_STREQ(text.c_str(), "cde");
}

TEST(StlString, InsertPutsTextBeforeThePosition) {
  _STL::string text("13");
  EXPECT_TRUE(text.insert(1, "2"));
  EXPECT_TRUE(text.insert(0, "0..", 1));
  EXPECT_TRUE(text.insert(4, "4"));
  EXPECT_STREQ(text.c_str(), "01234");
}

TEST(StlString, InsertBeyondTheEndAppends) {
  _STL::string text("ab");
  EXPECT_TRUE(text.insert(static_cast<size_t>(-1), "c"));
  EXPECT_TRUE(text.insert(4, "d"));
  EXPECT_STREQ(text.c_str(), "abcd");
}

TEST(StlString, InsertOfOwnTextIsSafeWithAndWithoutGrowth) {
  _STL::string tight("abcdefghijklmno");
  EXPECT_TRUE(tight.insert(1, tight.c_str(), tight.size()));
  EXPECT_STREQ(tight.c_str(), "aabcdefghijklmnobcdefghijklmno");
  _STL::string roomy("abcd");
  ASSERT_TRUE(roomy.reserve(100));
  EXPECT_TRUE(roomy.insert(1, roomy.c_str() + 2, 2));
  EXPECT_STREQ(roomy.c_str(), "acdbcd");
  EXPECT_TRUE(roomy.insert(1, roomy.c_str(), 3));
  EXPECT_STREQ(roomy.c_str(), "aacdcdbcd");
}

TEST(StlString, InsertOfTheOwnTerminatorIsSafeWithRoom) {
  _STL::string text("abcd");
  ASSERT_TRUE(text.reserve(100));
  EXPECT_TRUE(text.insert(3, text.c_str() + 4, 1));
  EXPECT_TRUE(text == _STL::string("abc\0d", 5));
}

TEST(StlString, InsertOfOwnTextKeepsTheRoomThatIsThere) {
  _STL::string text = digits(10);
  ASSERT_TRUE(text.reserve(30));
  size_t const capacity = text.capacity();
  EXPECT_TRUE(text.insert(1, text.c_str(), 2));
  EXPECT_EQ(text.capacity(), capacity);
  EXPECT_TRUE(text.append(digits(10)));
  EXPECT_TRUE(text.insert(1, text.c_str(), capacity - text.size()));
  EXPECT_EQ(text.size(), capacity);
  EXPECT_EQ(text.capacity(), capacity);
}

TEST(StlString, CapacityIsWhatFits) {
  _STL::string text = digits(20);
  char const* const storage = text.c_str();
  EXPECT_TRUE(text.append(digits(text.capacity() - text.size())));
  EXPECT_TRUE(text.c_str() == storage);
}

TEST(StlString, EraseTakesOutTheCount) {
  _STL::string text("abcdef");
  text.erase(1, 2);
  EXPECT_STREQ(text.c_str(), "adef");
  text.erase(0, 0);
  EXPECT_STREQ(text.c_str(), "adef");
}

TEST(StlString, EraseIsCutToWhatIsThere) {
  _STL::string text("abcdef");
  text.erase(4, static_cast<size_t>(-1));
  EXPECT_STREQ(text.c_str(), "abcd");
  text.erase(4, 1);
  text.erase(static_cast<size_t>(-1), 1);
  EXPECT_STREQ(text.c_str(), "abcd");
}

TEST(StlString, ClearKeepsTheStorage) {
  _STL::string text = digits(50);
  size_t const capacity = text.capacity();
  text.clear();
  EXPECT_STREQ(text.c_str(), "");
  EXPECT_EQ(text.capacity(), capacity);
  _STL::string none;
  none.clear();
  EXPECT_STREQ(none.c_str(), "");
}

TEST(StlString, ReservedRoomIsUsedWithoutGrowth) {
  _STL::string text("a");
  ASSERT_TRUE(text.reserve(64));
  char const* const storage = text.c_str();
  EXPECT_TRUE(text.append(digits(63)));
  EXPECT_EQ(text.size(), size_t{64});
  EXPECT_TRUE(text.c_str() == storage);
}

TEST(StlString, ReserveNeverShrinks) {
  _STL::string text = digits(40);
  size_t const capacity = text.capacity();
  EXPECT_TRUE(text.reserve(0));
  EXPECT_EQ(text.capacity(), capacity);
}

TEST(StlString, ResizeCutsOrFills) {
  _STL::string text("abc");
  EXPECT_TRUE(text.resize(5, '.'));
  EXPECT_STREQ(text.c_str(), "abc..");
  EXPECT_TRUE(text.resize(2));
  EXPECT_STREQ(text.c_str(), "ab");
  EXPECT_TRUE(text.resize(20));
  ASSERT_EQ(text.size(), size_t{20});
  EXPECT_EQ(text[19], '\0');
}

TEST(StlString, CharactersChangeInPlace) {
  _STL::string text("abc");
  ASSERT_EQ(text.size(), size_t{3});
  text[1] = 'X';
  for (char& character : text) {
    character = static_cast<char>(character + 1);
  }
  EXPECT_STREQ(text.c_str(), "bYd");
}

TEST(StlString, CompareOrdersByUnitsAndThenByLength) {
  _STL::string const text("slot");
  EXPECT_EQ(text.compare("slot"), i32{0});
  EXPECT_LT(text.compare("slots"), i32{0});
  EXPECT_GT(text.compare("slo"), i32{0});
  EXPECT_LT(text.compare("slou"), i32{0});
  EXPECT_GT(text.compare("Slot"), i32{0});
  EXPECT_EQ(text.compare("slots", 4), i32{0});
}

TEST(StlString, CompareTakesBytesAsUnsigned) {
  _STL::string const high("\xFF");
  EXPECT_GT(high.compare("a"), i32{0});
  EXPECT_TRUE(_STL::string("a") < high);
  EXPECT_FALSE(high < high);
}

TEST(StlString, EqualTextsHaveEqualLengthAndUnits) {
  _STL::string const text("ab");
  EXPECT_TRUE(text == _STL::string("ab"));
  EXPECT_TRUE(text == "ab");
  EXPECT_TRUE(text != "ac");
  EXPECT_TRUE(text != _STL::string("ab\0", 3));
  EXPECT_TRUE(_STL::string("ab\0", 3) != "ab");
}

TEST(StlString, CopyIsIndependent) {
  _STL::string original("abc");
  ASSERT_EQ(original.size(), size_t{3});
  _STL::string copy(original);
  original[0] = 'X';
  EXPECT_STREQ(copy.c_str(), "abc");
  copy = original;
  original.clear();
  EXPECT_STREQ(copy.c_str(), "Xbc");
}

TEST(StlString, SelfAssignmentChangesNothing) {
  _STL::string text("abc");
  _STL::string& same = text;
  text = same;
  EXPECT_STREQ(text.c_str(), "abc");
  text = _STL::move(same);
  EXPECT_STREQ(text.c_str(), "abc");
}

TEST(StlString, MoveTakesTheStorageAndLeavesAnEmptyText) {
  _STL::string original("abc");
  char const* const storage = original.c_str();
  _STL::string taken(_STL::move(original));
  EXPECT_TRUE(taken.c_str() == storage);
  EXPECT_STREQ(original.c_str(), "");
  _STL::string target("old");
  target = _STL::move(taken);
  EXPECT_TRUE(target.c_str() == storage);
  EXPECT_FALSE(target.hasFailed());
  EXPECT_STREQ(taken.c_str(), "");
  EXPECT_TRUE(taken.append("again"));
  EXPECT_STREQ(taken.c_str(), "again");
}

TEST(StlString, SwapExchangesTheTexts) {
  _STL::string first("one");
  _STL::string second;
  first.swap(second);
  EXPECT_STREQ(first.c_str(), "");
  EXPECT_STREQ(second.c_str(), "one");
}

TEST(StlString, LengthThatCannotExistFailsAndKeepsTheText) {
  size_t const impossible = _STL::string::max_size();
  _STL::string text("abc");
  EXPECT_FALSE(text.append("x", impossible));
  EXPECT_FALSE(text.append("x", static_cast<size_t>(-1)));
  EXPECT_FALSE(text.insert(1, "x", static_cast<size_t>(-3)));
  EXPECT_FALSE(text.reserve(impossible + 1));
  EXPECT_FALSE(text.reserve(static_cast<size_t>(-1)));
  EXPECT_FALSE(text.resize(impossible + 1));
  EXPECT_FALSE(text.assign("x", static_cast<size_t>(-1)));
  EXPECT_STREQ(text.c_str(), "abc");
  EXPECT_TRUE(text.hasFailed());
}

TEST(StlString, FailureStaysUntilItIsCleared) {
  _STL::string text;
  EXPECT_FALSE(text.reserve(static_cast<size_t>(-1)));
  EXPECT_TRUE(text.append("abc"));
  EXPECT_TRUE(text.hasFailed());
  text.clearFailure();
  EXPECT_FALSE(text.hasFailed());
  EXPECT_STREQ(text.c_str(), "abc");
}

TEST(StlString, FailedConstructionLeavesAnEmptyText) {
  _STL::string const text("abc", static_cast<size_t>(-1));
  EXPECT_TRUE(text.hasFailed());
  EXPECT_STREQ(text.c_str(), "");
}

TEST(StlString, FailureGoesWithAMoveAndNotWithACopy) {
  _STL::string failed("abc");
  EXPECT_FALSE(failed.reserve(static_cast<size_t>(-1)));
  _STL::string const copy(failed);
  EXPECT_FALSE(copy.hasFailed());
  _STL::string moved(_STL::move(failed));
  EXPECT_TRUE(moved.hasFailed());
  EXPECT_FALSE(failed.hasFailed());
  _STL::string target;
  target = _STL::move(moved);
  EXPECT_TRUE(target.hasFailed());
  EXPECT_FALSE(moved.hasFailed());
}

TEST(StlString, AssignmentKeepsTheTargetsFailure) {
  _STL::string target;
  EXPECT_FALSE(target.reserve(static_cast<size_t>(-1)));
  _STL::string const clean("abc");
  target = clean;
  EXPECT_TRUE(target.hasFailed());
  target = _STL::string("def");
  EXPECT_TRUE(target.hasFailed());
  EXPECT_STREQ(target.c_str(), "def");
}

TEST(StlString, SelfMoveKeepsTextAndFailure) {
  _STL::string text("abc");
  EXPECT_FALSE(text.reserve(static_cast<size_t>(-1)));
  _STL::string& same = text;
  text = _STL::move(same);
  EXPECT_STREQ(text.c_str(), "abc");
  EXPECT_TRUE(text.hasFailed());
}

TEST(StlString, SwapExchangesTheFailures) {
  _STL::string first;
  _STL::string second;
  EXPECT_FALSE(first.reserve(static_cast<size_t>(-1)));
  first.swap(second);
  EXPECT_FALSE(first.hasFailed());
  EXPECT_TRUE(second.hasFailed());
}

TEST(StlString, ScratchMemoryServesAsWell) {
  _STL::basic_string<char, _STL::kMemoryScratch> text("words");
  EXPECT_TRUE(text.append(" and more words than fit at first"));
  EXPECT_STREQ(text.c_str(), "words and more words than fit at first");
}

TEST(StlWideString, NewTextIsEmptyAndTerminated) {
  _STL::wstring text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.c_str()[0], L'\0');
}

TEST(StlWideString, ReportIsBuiltByAppending) {
  _STL::wstring report;
  _STL::wstring const separator(L", ");
  EXPECT_TRUE(report.append(L"slot 1"));
  EXPECT_TRUE(report.append(separator));
  EXPECT_TRUE(report.append(L"slot 22", 6));
  EXPECT_TRUE(report.push_back(L'!'));
  EXPECT_TRUE(report == L"slot 1, slot 2!");
  EXPECT_EQ(report.size(), size_t{15});
}

TEST(StlWideString, TitleIsEditedInPlace) {
  _STL::wstring text(L"Range");
  EXPECT_TRUE(text.insert(0, L"[", 1));
  EXPECT_TRUE(text.append(L"]"));
  text[1] = L'r';
  EXPECT_TRUE(text == L"[range]");
}

TEST(StlWideString, UnitsAreUtf16AndComparedUnsigned) {
  _STL::wstring const text(L"\x20AC\xFFFD");
  ASSERT_EQ(text.size(), size_t{2});
  EXPECT_EQ(static_cast<u32>(text[1]), u32{0xFFFD});
  EXPECT_GT(text.compare(L"\x20AC\x7FFF"), i32{0});
  EXPECT_LT(text.compare(L"\x20AC\xFFFE"), i32{0});
}

TEST(StlWideString, InnerTerminatorsAreKept) {
  _STL::wstring text(L"a\0b", 3);
  EXPECT_TRUE(text.append(L"\0c", 2));
  EXPECT_EQ(text.size(), size_t{5});
  EXPECT_TRUE(text != L"a");
}

TEST(StlWideString, LengthThatCannotExistFailsAndKeepsTheText) {
  _STL::wstring text(L"abc");
  EXPECT_FALSE(text.reserve(_STL::wstring::max_size() + 1));
  EXPECT_FALSE(text.append(L"x", static_cast<size_t>(-1) / 2));
  EXPECT_TRUE(text == L"abc");
  EXPECT_TRUE(text.hasFailed());
}

TEST(BorrowedString, IsTheTextWhereItIs) {
  wchar_t const text[] = L"slot 12";
  _STL::borrowed_string<wchar_t> borrowed(text, 7);
  EXPECT_TRUE(borrowed.get() == L"slot 12");
  EXPECT_TRUE(borrowed.get().c_str() == text);
  _STL::wstring copy(borrowed.get());
  EXPECT_TRUE(copy.append(L"3"));
  EXPECT_TRUE(copy == L"slot 123");
  borrowed.refer(text + 5, 2);
  EXPECT_TRUE(borrowed.get() == L"12");
}
