#include "conformance/harness.h"
#include "stl/string.h"
#include "stl/vector.h"
#include "stlElements.h"

using namespace stlElements;

// Every member compiles on every target, also those that no test calls.
template class _STL::vector<i32>;
template class _STL::vector<_STL::wstring>;
template class _STL::vector<_STL::vector<_STL::string>>;

using tNumbers = _STL::vector<i32>;

// The numbers 0, 1, 2 ... below `count`.
static tNumbers counting(i32 count) {
  tNumbers numbers;
  for (i32 i = 0; i < count; ++i) {
    numbers.push_back(i);
  }
  return numbers;
}

// True when the elements are exactly these four.
static bool holds(tNumbers const& numbers, i32 first, i32 second, i32 third, i32 fourth) {
  return numbers.size() == 4 && numbers[0] == first && numbers[1] == second &&
         numbers[2] == third && numbers[3] == fourth;
}

TEST(StlVector, NewVectorIsEmpty) {
  tNumbers numbers;
  EXPECT_TRUE(numbers.empty());
  EXPECT_EQ(numbers.size(), size_t{0});
  EXPECT_TRUE(numbers.begin() == numbers.end());
  EXPECT_TRUE(numbers.data() == nullptr);
  EXPECT_FALSE(numbers.hasFailed());
}

TEST(StlVector, PushBackKeepsTheOrder) {
  tNumbers const numbers = counting(100);
  EXPECT_EQ(numbers.size(), size_t{100});
  for (i32 i = 0; i < 100; ++i) {
    EXPECT_EQ(numbers[static_cast<size_t>(i)], i);
  }
  EXPECT_EQ(numbers.front(), i32{0});
  EXPECT_EQ(numbers.back(), i32{99});
  tNumbers changing = numbers;
  ASSERT_FALSE(changing.empty());
  changing.front() = 7;
  EXPECT_EQ(changing[0], i32{7});
}

TEST(StlVector, IterationVisitsEveryElementInOrder) {
  i32 expected = 0;
  for (i32 number : counting(10)) {
    EXPECT_EQ(number, expected);
    ++expected;
  }
  EXPECT_EQ(expected, i32{10});
}

TEST(StlVector, InsertPutsAnElementBeforeTheIndex) {
  tNumbers numbers;
  EXPECT_TRUE(numbers.insert(0, 3));
  EXPECT_TRUE(numbers.insert(0, 1));
  EXPECT_TRUE(numbers.insert(1, 2));
  EXPECT_TRUE(numbers.insert(3, 4));
  EXPECT_TRUE(holds(numbers, 1, 2, 3, 4));
}

TEST(StlVector, InsertBeyondTheEndAppends) {
  tNumbers numbers = counting(3);
  EXPECT_TRUE(numbers.insert(static_cast<size_t>(-1), 7));
  EXPECT_TRUE(holds(numbers, 0, 1, 2, 7));
}

TEST(StlVector, OwnElementCanBePushedWhileGrowing) {
  _STL::vector<_STL::string> texts;
  ASSERT_TRUE(texts.push_back(_STL::string("first")));
  while (texts.size() < texts.capacity()) {
    ASSERT_TRUE(texts.push_back(texts[0]));
  }
  EXPECT_TRUE(texts.push_back(texts[0]));
  EXPECT_STREQ(texts.back().c_str(), "first");
  EXPECT_STREQ(texts.front().c_str(), "first");
}

TEST(StlVector, OwnElementCanBeInsertedBeforeItself) {
  tNumbers numbers = counting(3);
  EXPECT_TRUE(numbers.insert(0, numbers[2]));
  EXPECT_TRUE(holds(numbers, 2, 0, 1, 2));
  EXPECT_TRUE(numbers.insert(0, numbers[3]));
  EXPECT_EQ(numbers[0], i32{2});
}

TEST(StlVector, OwnElementCanBeMovedToTheBackWhileGrowing) {
  _STL::vector<_STL::string> texts;
  ASSERT_TRUE(texts.reserve(1));
  ASSERT_TRUE(texts.push_back(_STL::string("first")));
  ASSERT_TRUE(texts.push_back(_STL::move(texts[0])));
  EXPECT_STREQ(texts[0].c_str(), "");
  EXPECT_STREQ(texts[1].c_str(), "first");
}

TEST(StlVector, EraseMovesLaterElementsDown) {
  tNumbers numbers = counting(6);
  numbers.erase(1);
  numbers.erase(3, 1);
  EXPECT_TRUE(holds(numbers, 0, 2, 3, 5));
}

TEST(StlVector, EraseIsCutToWhatIsThere) {
  tNumbers numbers = counting(6);
  numbers.erase(4, static_cast<size_t>(-1));
  numbers.erase(4);
  numbers.erase(static_cast<size_t>(-1), 3);
  EXPECT_TRUE(holds(numbers, 0, 1, 2, 3));
}

TEST(StlVector, PopBackTakesTheLastAndSparesAnEmptyVector) {
  tNumbers numbers = counting(2);
  ASSERT_EQ(numbers.size(), size_t{2});
  numbers.pop_back();
  EXPECT_EQ(numbers.back(), i32{0});
  numbers.pop_back();
  numbers.pop_back();
  EXPECT_TRUE(numbers.empty());
}

TEST(StlVector, ClearKeepsTheStorage) {
  tNumbers numbers = counting(50);
  size_t const capacity = numbers.capacity();
  numbers.clear();
  EXPECT_TRUE(numbers.empty());
  EXPECT_EQ(numbers.capacity(), capacity);
}

TEST(StlVector, ReservedRoomIsUsedWithoutGrowth) {
  tNumbers numbers;
  ASSERT_TRUE(numbers.reserve(20));
  i32 const* const storage = numbers.data();
  for (i32 i = 0; i < 20; ++i) {
    EXPECT_TRUE(numbers.push_back(i));
  }
  EXPECT_TRUE(numbers.data() == storage);
}

TEST(StlVector, ResizeFillsWithZeroAndCuts) {
  tNumbers numbers = counting(2);
  EXPECT_TRUE(numbers.resize(4));
  EXPECT_TRUE(holds(numbers, 0, 1, 0, 0));
  EXPECT_TRUE(numbers.resize(1));
  EXPECT_EQ(numbers.size(), size_t{1});
  EXPECT_TRUE(numbers.resize(1));
  EXPECT_EQ(numbers.size(), size_t{1});
}

TEST(StlVector, AssignReplacesTheContent) {
  i32 const values[] = {9, 8, 7, 6};
  tNumbers numbers = counting(10);
  EXPECT_TRUE(numbers.assign(values, 4));
  EXPECT_TRUE(holds(numbers, 9, 8, 7, 6));
  EXPECT_TRUE(numbers.assign(nullptr, 4));
  EXPECT_TRUE(numbers.empty());
}

TEST(StlVector, AssignOfOwnPieceKeepsJustThat) {
  tNumbers numbers = counting(10);
  EXPECT_TRUE(numbers.assign(numbers.data() + 3, 4));
  EXPECT_TRUE(holds(numbers, 3, 4, 5, 6));
}

TEST(StlVector, EqualVectorsHaveEqualElementsInEqualOrder) {
  tNumbers numbers = counting(2);
  EXPECT_TRUE(numbers == counting(2));
  EXPECT_TRUE(numbers != counting(3));
  _STL::swap(numbers[0], numbers[1]);
  EXPECT_TRUE(numbers != counting(2));
  tNumbers const none;
  tNumbers const alsoNone;
  EXPECT_TRUE(none == alsoNone);
}

TEST(StlVector, CopyIsIndependent) {
  _STL::vector<_STL::wstring> original;
  ASSERT_TRUE(original.push_back(_STL::wstring(L"one")));
  _STL::vector<_STL::wstring> copy(original);
  ASSERT_EQ(copy.size(), size_t{1});
  ASSERT_EQ(original[0].size(), size_t{3});
  original[0][0] = L'X';
  EXPECT_TRUE(copy[0] == L"one");
  copy = original;
  ASSERT_EQ(copy.size(), size_t{1});
  original.clear();
  EXPECT_TRUE(copy[0] == L"Xne");
}

TEST(StlVector, SelfAssignmentChangesNothing) {
  tNumbers numbers = counting(4);
  tNumbers& same = numbers;
  numbers = same;
  numbers = _STL::move(same);
  EXPECT_TRUE(holds(numbers, 0, 1, 2, 3));
}

TEST(StlVector, MoveTakesTheStorageAndLeavesAnEmptyVector) {
  tNumbers original = counting(4);
  i32 const* const storage = original.data();
  tNumbers taken(_STL::move(original));
  EXPECT_TRUE(original.empty());
  tNumbers target = counting(9);
  target = _STL::move(taken);
  EXPECT_TRUE(taken.empty());
  EXPECT_TRUE(target.data() == storage);
  EXPECT_FALSE(target.hasFailed());
  ASSERT_TRUE(taken.push_back(5));
  EXPECT_EQ(taken[0], i32{5});
}

TEST(StlVector, SwapExchangesContentAndFailure) {
  tNumbers first = counting(4);
  tNumbers second;
  EXPECT_FALSE(second.reserve(static_cast<size_t>(-1)));
  first.swap(second);
  EXPECT_TRUE(first.empty());
  EXPECT_TRUE(first.hasFailed());
  EXPECT_TRUE(holds(second, 0, 1, 2, 3));
  EXPECT_FALSE(second.hasFailed());
}

TEST(StlVector, EveryElementIsDestroyedOnce) {
  tCounted::alive = 0;
  {
    _STL::vector<tCounted> elements;
    for (i32 i = 0; i < 20; ++i) {
      ASSERT_TRUE(elements.insert(static_cast<size_t>(i / 2), tCounted(i)));
    }
    EXPECT_EQ(tCounted::alive, i32{20});
    elements.erase(3, 5);
    EXPECT_EQ(tCounted::alive, i32{15});
    _STL::vector<tCounted> copy(elements);
    EXPECT_EQ(tCounted::alive, i32{30});
    copy = elements;
    EXPECT_EQ(tCounted::alive, i32{30});
    elements.clear();
    EXPECT_EQ(tCounted::alive, i32{15});
  }
  EXPECT_EQ(tCounted::alive, i32{0});
}

TEST(StlVector, ElementsThatOnlyMoveAreHeld) {
  _STL::vector<tMoveOnly> elements;
  for (i32 i = 0; i < 10; ++i) {
    ASSERT_TRUE(elements.insert(0, tMoveOnly(i)));
  }
  elements.erase(0, 2);
  EXPECT_EQ(elements[0].value(), i32{7});
  EXPECT_EQ(elements[7].value(), i32{0});
}

TEST(StlVector, ElementWhoseCopyFailsIsNotAdded) {
  _STL::vector<tRefusing> elements;
  tRefusing const element(5);
  ASSERT_TRUE(elements.push_back(element));
  tRefusing::goodOnes = 0;
  EXPECT_FALSE(elements.push_back(element));
  EXPECT_TRUE(elements.hasFailed());
  EXPECT_EQ(elements.size(), size_t{1});
}

TEST(StlVector, CopyWithOneFailedElementIsEmptyAndFailed) {
  _STL::vector<tRefusing> elements;
  for (i32 i = 0; i < 3; ++i) {
    ASSERT_TRUE(elements.push_back(tRefusing(i)));
  }
  tRefusing::goodOnes = 2;
  _STL::vector<tRefusing> const copy(elements);
  EXPECT_TRUE(copy.hasFailed());
  EXPECT_TRUE(copy.empty());
}

TEST(StlVector, AssignmentWithOneFailedElementKeepsTheOldContent) {
  _STL::vector<tRefusing> elements;
  ASSERT_TRUE(elements.push_back(tRefusing(1)));
  ASSERT_TRUE(elements.push_back(tRefusing(2)));
  _STL::vector<tRefusing> target;
  ASSERT_TRUE(target.push_back(tRefusing(9)));
  tRefusing::goodOnes = 1;
  target = elements;
  EXPECT_TRUE(target.hasFailed());
  EXPECT_EQ(target.size(), size_t{1});
  EXPECT_EQ(target[0].value(), i32{9});
}

TEST(StlVector, ResizeWithOneFailedElementKeepsTheOldSize) {
  _STL::vector<tRefusing> elements;
  ASSERT_TRUE(elements.push_back(tRefusing(1)));
  tRefusing::goodOnes = 3;
  EXPECT_FALSE(elements.resize(6));
  EXPECT_EQ(elements.size(), size_t{1});
  EXPECT_TRUE(elements.hasFailed());
  EXPECT_TRUE(elements.resize(6));
  EXPECT_EQ(elements.size(), size_t{6});
}

TEST(StlVector, SizeThatCannotExistFailsAndKeepsTheContent) {
  tNumbers numbers = counting(4);
  EXPECT_FALSE(numbers.reserve(tNumbers::max_size() + 1));
  EXPECT_FALSE(numbers.reserve(static_cast<size_t>(-1)));
  EXPECT_FALSE(numbers.resize(tNumbers::max_size() + 1));
  EXPECT_FALSE(numbers.resize(static_cast<size_t>(-1)));
  EXPECT_FALSE(numbers.assign(numbers.data(), static_cast<size_t>(-1) / sizeof(i32) + 2));
  EXPECT_TRUE(holds(numbers, 0, 1, 2, 3));
  EXPECT_TRUE(numbers.hasFailed());
}

TEST(StlVector, FailureStaysUntilItIsCleared) {
  tNumbers numbers;
  EXPECT_FALSE(numbers.reserve(static_cast<size_t>(-1)));
  EXPECT_TRUE(numbers.push_back(1));
  EXPECT_TRUE(numbers.hasFailed());
  numbers.clearFailure();
  EXPECT_FALSE(numbers.hasFailed());
}

TEST(StlVector, FailureGoesWithAMoveAndNotWithACopy) {
  tNumbers failed;
  EXPECT_FALSE(failed.reserve(static_cast<size_t>(-1)));
  tNumbers const copy(failed);
  EXPECT_FALSE(copy.hasFailed());
  tNumbers moved(_STL::move(failed));
  EXPECT_TRUE(moved.hasFailed());
  EXPECT_FALSE(failed.hasFailed());
  tNumbers target;
  target = _STL::move(moved);
  EXPECT_TRUE(target.hasFailed());
  EXPECT_FALSE(moved.hasFailed());
}
