#include "conformance/harness.h"
#include "stl/map.h"
#include "stl/string.h"
#include "stlElements.h"

using namespace stlElements;

// Every member compiles on every target, also those that no test calls.
template class _STL::map<u32, void*>;
template class _STL::map<_STL::string, _STL::wstring>;

using tTable = _STL::map<u32, i32>;

// Keys 1 to `last` in an order that jumps around; the value is the key negated.
static tTable shuffled(u32 last) {
  tTable table;
  for (u32 i = 0; i < last; ++i) {
    u32 const key = (i * 7919) % last + 1;
    table.insert(key, -static_cast<i32>(key));
  }
  return table;
}

TEST(StlMap, NewMapIsEmpty) {
  tTable table;
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(table.size(), size_t{0});
  EXPECT_TRUE(table.begin() == table.end());
  EXPECT_TRUE(table.find(1) == nullptr);
  EXPECT_FALSE(table.erase(1));
  EXPECT_FALSE(table.hasFailed());
}

TEST(StlMap, ValueIsFoundUnderItsKey) {
  tTable table;
  ASSERT_TRUE(table.insert(0xC0000000, 5));
  ASSERT_TRUE(table.insert(0, 6));
  ASSERT_TRUE(table.insert(0xFFFFFFFF, 7));
  ASSERT_TRUE(table.find(0xC0000000) != nullptr);
  EXPECT_EQ(*table.find(0xC0000000), i32{5});
  EXPECT_EQ(*table.find(0), i32{6});
  EXPECT_EQ(*table.find(0xFFFFFFFF), i32{7});
  EXPECT_TRUE(table.find(1) == nullptr);
  EXPECT_TRUE(table.contains(0));
  EXPECT_FALSE(table.contains(2));
}

TEST(StlMap, TakenKeyKeepsItsValue) {
  tTable table;
  EXPECT_TRUE(table.insert(1, 10));
  EXPECT_FALSE(table.insert(1, 20));
  EXPECT_EQ(*table.find(1), i32{10});
  EXPECT_EQ(table.size(), size_t{1});
  EXPECT_FALSE(table.hasFailed());
}

TEST(StlMap, IterationIsAscending) {
  tTable const table = shuffled(1000);
  EXPECT_EQ(table.size(), size_t{1000});
  u32 expected = 1;
  for (auto& entry : table) {
    EXPECT_EQ(entry.key, expected);
    EXPECT_EQ(entry.value, -static_cast<i32>(expected));
    ++expected;
  }
  EXPECT_EQ(expected, u32{1001});
}

TEST(StlMap, EraseTakesOutJustThatEntry) {
  tTable table = shuffled(500);
  for (u32 key = 2; key <= 500; key += 2) {
    EXPECT_TRUE(table.erase(key));
    EXPECT_FALSE(table.erase(key));
  }
  EXPECT_EQ(table.size(), size_t{250});
  u32 expected = 1;
  for (auto& entry : table) {
    EXPECT_EQ(entry.key, expected);
    expected += 2;
  }
  EXPECT_EQ(expected, u32{501});
}

TEST(StlMap, ValuesStayWhereTheyAreWhenOthersGo) {
  tTable table = shuffled(100);
  i32* const value = table.find(50);
  for (u32 key = 1; key <= 100; ++key) {
    if (key != 50) {
      EXPECT_TRUE(table.erase(key));
    }
  }
  EXPECT_TRUE(table.find(50) == value);
  EXPECT_EQ(*value, i32{-50});
}

TEST(StlMap, ValueChangesInPlace) {
  tTable table = shuffled(3);
  ASSERT_NE(table.find(2), nullptr);
  *table.find(2) = 9;
  for (auto& entry : table) {
    ++entry.value;
  }
  EXPECT_EQ(*table.find(2), i32{10});
}

TEST(StlMap, KeyOfOwnEntryCanBeErased) {
  _STL::map<_STL::string, i32> table;
  ASSERT_TRUE(table.insert(_STL::string("one"), 1));
  ASSERT_TRUE(table.insert(_STL::string("two"), 2));
  EXPECT_TRUE(table.erase(table.begin()->key));
  EXPECT_STREQ(table.begin()->key.c_str(), "two");
}

TEST(StlMap, OwnValueCanBeInserted) {
  _STL::map<u32, _STL::string> table;
  ASSERT_TRUE(table.insert(1, _STL::string("one")));
  ASSERT_TRUE(table.insert(2, *table.find(1)));
  EXPECT_STREQ(table.find(2)->c_str(), "one");
  EXPECT_STREQ(table.find(1)->c_str(), "one");
}

namespace {

struct tTextOrder {
  bool operator()(char const* left, char const* right) const noexcept {
    while (*left != '\0' && *left == *right) {
      ++left;
      ++right;
    }
    return static_cast<u8>(*left) < static_cast<u8>(*right);
  }
};

}  // namespace

TEST(StlMap, OrderOfTheCallerDecides) {
  _STL::map<char const*, i32, tTextOrder> categories;
  EXPECT_TRUE(categories.insert("warning", 4));
  EXPECT_TRUE(categories.insert("default", 1));
  EXPECT_TRUE(categories.insert("statusWarning", 3));
  EXPECT_TRUE(categories.insert("statusFatal", 2));
  char const name[] = "default";
  EXPECT_FALSE(categories.insert(name, 9));
  i32 expected = 1;
  for (auto& entry : categories) {
    EXPECT_EQ(entry.value, expected);
    ++expected;
  }
  EXPECT_EQ(expected, i32{5});
}

TEST(StlMap, ClearedMapIsUsedAgain) {
  tTable table = shuffled(20);
  table.clear();
  EXPECT_TRUE(table.empty());
  EXPECT_TRUE(table.begin() == table.end());
  EXPECT_TRUE(table.insert(3, 4));
  ASSERT_NE(table.find(3), nullptr);
  EXPECT_EQ(*table.find(3), i32{4});
}

TEST(StlMap, CopyIsIndependent) {
  tTable original = shuffled(10);
  tTable copy(original);
  ASSERT_EQ(copy.size(), size_t{10});
  *original.find(4) = 99;
  EXPECT_EQ(*copy.find(4), i32{-4});
  copy = original;
  original.clear();
  ASSERT_EQ(copy.size(), size_t{10});
  EXPECT_EQ(*copy.find(4), i32{99});
}

TEST(StlMap, SelfAssignmentChangesNothing) {
  tTable table = shuffled(5);
  tTable& same = table;
  table = same;
  table = _STL::move(same);
  table.swap(same);
  EXPECT_EQ(table.size(), size_t{5});
  ASSERT_NE(table.find(5), nullptr);
  EXPECT_EQ(*table.find(5), i32{-5});
}

TEST(StlMap, MoveTakesTheEntriesWhereTheyAre) {
  tTable original = shuffled(5);
  i32 const* const value = original.find(3);
  tTable taken(_STL::move(original));
  EXPECT_TRUE(original.empty());
  tTable target = shuffled(9);
  target = _STL::move(taken);
  EXPECT_TRUE(taken.empty());
  EXPECT_TRUE(target.find(3) == value);
  EXPECT_EQ(target.size(), size_t{5});
  EXPECT_FALSE(target.hasFailed());
  EXPECT_TRUE(taken.insert(1, 1));
}

TEST(StlMap, SwapExchangesTheEntries) {
  tTable first = shuffled(5);
  tTable second;
  first.swap(second);
  EXPECT_TRUE(first.empty());
  EXPECT_EQ(second.size(), size_t{5});
}

TEST(StlMap, EveryEntryIsDestroyedOnce) {
  tCounted::alive = 0;
  {
    _STL::map<u32, tCounted> table;
    for (u32 key = 0; key < 20; ++key) {
      ASSERT_TRUE(table.insert(key, tCounted(static_cast<i32>(key))));
    }
    EXPECT_EQ(tCounted::alive, i32{20});
    EXPECT_FALSE(table.insert(7, tCounted(70)));
    _STL::map<u32, tCounted> const copy(table);
    EXPECT_TRUE(table.erase(7));
    EXPECT_EQ(tCounted::alive, i32{39});
  }
  EXPECT_EQ(tCounted::alive, i32{0});
}

TEST(StlMap, ValuesThatOnlyMoveAreHeld) {
  _STL::map<u32, tMoveOnly> table;
  ASSERT_TRUE(table.insert(1, tMoveOnly(10)));
  EXPECT_EQ(table.find(1)->value(), i32{10});
}

TEST(StlMap, RefusedValueIsNotMovedFrom) {
  _STL::map<u32, tMoveOnly> table;
  ASSERT_TRUE(table.insert(1, tMoveOnly(10)));
  tMoveOnly second(20);
  EXPECT_FALSE(table.insert(1, _STL::move(second)));
  EXPECT_EQ(second.value(), i32{20});
}

TEST(StlMap, EntryWhoseKeyOrValueCannotBeCopiedIsNotAdded) {
  _STL::map<tRefusing, tRefusing> table;
  tRefusing const key(1);
  tRefusing const value(2);
  for (i32 good = 0; good < 2; ++good) {
    tRefusing::goodOnes = good;
    table.clearFailure();
    EXPECT_FALSE(table.insert(key, value));
    EXPECT_TRUE(table.hasFailed());
    EXPECT_TRUE(table.empty());
  }
  EXPECT_TRUE(table.insert(key, value));
}

TEST(StlMap, CopyWithOneFailedValueIsEmptyAndFailed) {
  _STL::map<u32, tRefusing> table;
  for (u32 key = 0; key < 3; ++key) {
    ASSERT_TRUE(table.insert(key, tRefusing(1)));
  }
  tRefusing::goodOnes = 2;
  _STL::map<u32, tRefusing> const copy(table);
  EXPECT_TRUE(copy.hasFailed());
  EXPECT_TRUE(copy.empty());
}

TEST(StlMap, AssignmentWithOneFailedValueKeepsTheOldContent) {
  _STL::map<u32, tRefusing> table;
  ASSERT_TRUE(table.insert(1, tRefusing(1)));
  _STL::map<u32, tRefusing> target;
  ASSERT_TRUE(target.insert(9, tRefusing(9)));
  tRefusing::goodOnes = 0;
  target = table;
  EXPECT_TRUE(target.hasFailed());
  EXPECT_TRUE(target.contains(9));
  EXPECT_FALSE(target.contains(1));
}

// One element inside, and the memory of a second that could not be copied.
static _STL::map<u32, tRefusing> failedOnce() {
  _STL::map<u32, tRefusing> elements;
  tRefusing const element(5);
  tRefusing::goodOnes = 0;
  elements.insert(1, element);
  elements.insert(1, element);
  return elements;
}

TEST(StlMap, FailureStaysUntilItIsCleared) {
  _STL::map<u32, tRefusing> elements = failedOnce();
  EXPECT_EQ(elements.size(), size_t{1});
  EXPECT_TRUE(elements.hasFailed());
  elements.clear();
  EXPECT_TRUE(elements.hasFailed());
  elements.clearFailure();
  EXPECT_FALSE(elements.hasFailed());
}

TEST(StlMap, FailureGoesWithAMoveAndNotWithACopy) {
  _STL::map<u32, tRefusing> failed = failedOnce();
  _STL::map<u32, tRefusing> const copy(failed);
  EXPECT_FALSE(copy.hasFailed());
  EXPECT_EQ(copy.size(), size_t{1});
  _STL::map<u32, tRefusing> moved(_STL::move(failed));
  EXPECT_TRUE(moved.hasFailed());
  EXPECT_FALSE(failed.hasFailed());
  _STL::map<u32, tRefusing> target;
  target = _STL::move(moved);
  EXPECT_TRUE(target.hasFailed());
  EXPECT_FALSE(moved.hasFailed());
}

TEST(StlMap, SwapExchangesTheFailures) {
  _STL::map<u32, tRefusing> first = failedOnce();
  _STL::map<u32, tRefusing> second;
  first.swap(second);
  EXPECT_FALSE(first.hasFailed());
  EXPECT_TRUE(second.hasFailed());
}
