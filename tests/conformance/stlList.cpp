#include "conformance/harness.h"
#include "stl/list.h"
#include "stl/string.h"
#include "stlElements.h"

using namespace stlElements;

// Every member compiles on every target, also those that no test calls.
template class _STL::list<u32>;
template class _STL::list<_STL::string>;

using tHandles = _STL::list<u32>;

// The numbers 1, 2 ... up to `last`.
static tHandles upTo(u32 last) {
  tHandles handles;
  for (u32 i = 1; i <= last; ++i) {
    handles.push_back(i);
  }
  return handles;
}

// The elements as decimal digits of one number, read forward: 1, 2, 3 give 123.
static u32 forward(tHandles const& handles) {
  u32 number = 0;
  for (u32 handle : handles) {
    number = number * 10 + handle;
  }
  return number;
}

// The same, read from the end to the beginning.
static u32 backward(tHandles& handles) {
  u32 number = 0;
  for (auto at = handles.end(); at != handles.begin();) {
    --at;
    number = number * 10 + *at;
  }
  return number;
}

TEST(StlList, NewListIsEmpty) {
  tHandles handles;
  EXPECT_TRUE(handles.empty());
  EXPECT_EQ(handles.size(), size_t{0});
  EXPECT_TRUE(handles.begin() == handles.end());
  EXPECT_FALSE(handles.hasFailed());
}

TEST(StlList, ElementsStandInTheOrderOfTheirEnds) {
  tHandles handles;
  EXPECT_TRUE(handles.push_back(2));
  EXPECT_TRUE(handles.push_back(3));
  EXPECT_TRUE(handles.push_front(1));
  EXPECT_EQ(forward(handles), u32{123});
  EXPECT_EQ(backward(handles), u32{321});
  EXPECT_EQ(handles.front(), u32{1});
  EXPECT_EQ(handles.back(), u32{3});
  EXPECT_EQ(handles.size(), size_t{3});
}

TEST(StlList, RingClosesOverTheEnd) {
  tHandles handles = upTo(2);
  auto at = handles.end();
  EXPECT_EQ(*++at, u32{1});
  EXPECT_TRUE(--at == handles.end());
  EXPECT_EQ(*--at, u32{2});
}

TEST(StlList, InsertPutsAnElementBeforeThePosition) {
  tHandles handles = upTo(1);
  EXPECT_TRUE(handles.insert(handles.end(), 3));
  EXPECT_TRUE(handles.insert(--handles.end(), 2));
  EXPECT_EQ(forward(handles), u32{123});
  EXPECT_EQ(backward(handles), u32{321});
}

TEST(StlList, EraseReturnsThePositionBehind) {
  tHandles handles = upTo(3);
  ASSERT_EQ(handles.size(), size_t{3});
  auto at = handles.erase(++handles.begin());
  EXPECT_EQ(*at, u32{3});
  at = handles.erase(at);
  EXPECT_TRUE(at == handles.end());
  EXPECT_EQ(forward(handles), u32{1});
  EXPECT_EQ(handles.size(), size_t{1});
}

TEST(StlList, EraseWhileIteratingVisitsTheRest) {
  tHandles handles = upTo(6);
  for (auto at = handles.begin(); at != handles.end();) {
    at = *at % 2 == 0 ? handles.erase(at) : ++at;
  }
  EXPECT_EQ(forward(handles), u32{135});
  EXPECT_EQ(backward(handles), u32{531});
}

TEST(StlList, RemoveTakesOutEveryEqualElement) {
  tHandles handles = upTo(3);
  EXPECT_TRUE(handles.push_front(3));
  EXPECT_EQ(handles.remove(3), size_t{2});
  EXPECT_EQ(handles.remove(7), size_t{0});
  EXPECT_EQ(forward(handles), u32{12});
}

TEST(StlList, RemoveTakesAnOwnElementAsItsArgument) {
  _STL::list<_STL::string> texts;
  for (u32 i = 0; i < 3; ++i) {
    ASSERT_TRUE(texts.push_back(_STL::string("a text of some length")));
  }
  ASSERT_TRUE(texts.push_back(_STL::string("other")));
  EXPECT_EQ(texts.remove(texts.front()), size_t{3});
  EXPECT_EQ(texts.size(), size_t{1});
  EXPECT_STREQ(texts.front().c_str(), "other");
}

TEST(StlList, PopTakesFromEitherEndAndSparesAnEmptyList) {
  tHandles handles = upTo(3);
  handles.pop_front();
  handles.pop_back();
  EXPECT_EQ(forward(handles), u32{2});
  handles.pop_back();
  handles.pop_back();
  handles.pop_front();
  EXPECT_TRUE(handles.empty());
}

TEST(StlList, ClearedListIsUsedAgain) {
  tHandles handles = upTo(3);
  handles.clear();
  EXPECT_TRUE(handles.begin() == handles.end());
  EXPECT_TRUE(handles.push_back(8));
  EXPECT_EQ(forward(handles), u32{8});
}

TEST(StlList, OwnElementCanBeAdded) {
  _STL::list<_STL::string> texts;
  ASSERT_TRUE(texts.push_back(_STL::string("one")));
  EXPECT_TRUE(texts.push_front(texts.back()));
  EXPECT_STREQ(texts.front().c_str(), "one");
  EXPECT_STREQ(texts.back().c_str(), "one");
}

TEST(StlList, CopyIsIndependent) {
  tHandles original = upTo(3);
  tHandles copy(original);
  original.front() = 9;
  EXPECT_EQ(forward(copy), u32{123});
  copy = original;
  original.clear();
  EXPECT_EQ(forward(copy), u32{923});
  EXPECT_EQ(backward(copy), u32{329});
}

TEST(StlList, SelfAssignmentAndSelfSwapChangeNothing) {
  tHandles handles = upTo(3);
  tHandles& same = handles;
  handles = same;
  handles = _STL::move(same);
  handles.swap(same);
  EXPECT_EQ(forward(handles), u32{123});
  EXPECT_EQ(backward(handles), u32{321});
}

TEST(StlList, MoveTakesTheElementsWhereTheyAre) {
  tHandles original = upTo(3);
  u32 const* const element = &original.front();
  tHandles taken(_STL::move(original));
  EXPECT_TRUE(original.empty());
  EXPECT_TRUE(original.begin() == original.end());
  tHandles target = upTo(5);
  target = _STL::move(taken);
  EXPECT_TRUE(&target.front() == element);
  EXPECT_FALSE(target.hasFailed());
  EXPECT_EQ(backward(target), u32{321});
  EXPECT_TRUE(taken.push_back(7));
  EXPECT_EQ(forward(taken), u32{7});
}

TEST(StlList, SwapWorksWithOneSideEmpty) {
  tHandles first = upTo(3);
  tHandles second;
  first.swap(second);
  EXPECT_TRUE(first.begin() == first.end());
  EXPECT_EQ(backward(second), u32{321});
  first.swap(second);
  EXPECT_TRUE(second.begin() == second.end());
  EXPECT_EQ(forward(first), u32{123});
}

TEST(StlList, EveryElementIsDestroyedOnce) {
  tCounted::alive = 0;
  {
    _STL::list<tCounted> elements;
    for (i32 i = 0; i < 10; ++i) {
      ASSERT_TRUE(elements.push_back(tCounted(i)));
    }
    EXPECT_EQ(tCounted::alive, i32{10});
    _STL::list<tCounted> const copy(elements);
    elements.pop_front();
    EXPECT_EQ(tCounted::alive, i32{19});
  }
  EXPECT_EQ(tCounted::alive, i32{0});
}

TEST(StlList, ElementsThatOnlyMoveAreHeld) {
  _STL::list<tMoveOnly> elements;
  ASSERT_TRUE(elements.push_back(tMoveOnly(1)));
  ASSERT_TRUE(elements.push_front(tMoveOnly(2)));
  EXPECT_EQ(elements.front().value(), i32{2});
}

TEST(StlList, ElementWhoseCopyFailsIsNotAdded) {
  _STL::list<tRefusing> elements;
  tRefusing const element(5);
  tRefusing::goodOnes = 0;
  EXPECT_FALSE(elements.push_back(element));
  EXPECT_TRUE(elements.hasFailed());
  EXPECT_TRUE(elements.empty());
}

TEST(StlList, CopyWithOneFailedElementIsEmptyAndFailed) {
  _STL::list<tRefusing> elements;
  for (i32 i = 0; i < 3; ++i) {
    ASSERT_TRUE(elements.push_back(tRefusing(i)));
  }
  tRefusing::goodOnes = 2;
  _STL::list<tRefusing> const copy(elements);
  EXPECT_TRUE(copy.hasFailed());
  EXPECT_TRUE(copy.empty());
}

TEST(StlList, AssignmentWithOneFailedElementKeepsTheOldContent) {
  _STL::list<tRefusing> elements;
  ASSERT_TRUE(elements.push_back(tRefusing(1)));
  _STL::list<tRefusing> target;
  ASSERT_TRUE(target.push_back(tRefusing(9)));
  tRefusing::goodOnes = 0;
  target = elements;
  EXPECT_TRUE(target.hasFailed());
  EXPECT_EQ(target.front().value(), i32{9});
}

// One element inside, and the memory of a second that could not be copied.
static _STL::list<tRefusing> failedOnce() {
  _STL::list<tRefusing> elements;
  tRefusing const element(5);
  tRefusing::goodOnes = 0;
  elements.push_back(element);
  elements.push_back(element);
  return elements;
}

TEST(StlList, FailureStaysUntilItIsCleared) {
  _STL::list<tRefusing> elements = failedOnce();
  EXPECT_EQ(elements.size(), size_t{1});
  EXPECT_TRUE(elements.hasFailed());
  elements.clear();
  EXPECT_TRUE(elements.hasFailed());
  elements.clearFailure();
  EXPECT_FALSE(elements.hasFailed());
}

TEST(StlList, FailureGoesWithAMoveAndNotWithACopy) {
  _STL::list<tRefusing> failed = failedOnce();
  _STL::list<tRefusing> const copy(failed);
  EXPECT_FALSE(copy.hasFailed());
  EXPECT_EQ(copy.size(), size_t{1});
  _STL::list<tRefusing> moved(_STL::move(failed));
  EXPECT_TRUE(moved.hasFailed());
  EXPECT_FALSE(failed.hasFailed());
  _STL::list<tRefusing> target;
  target = _STL::move(moved);
  EXPECT_TRUE(target.hasFailed());
  EXPECT_FALSE(moved.hasFailed());
}

TEST(StlList, SwapExchangesTheFailures) {
  _STL::list<tRefusing> first = failedOnce();
  _STL::list<tRefusing> second;
  first.swap(second);
  EXPECT_FALSE(first.hasFailed());
  EXPECT_TRUE(second.hasFailed());
}
