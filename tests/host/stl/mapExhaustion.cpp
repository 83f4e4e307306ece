#include "exhaust.h"

class StlMapExhaustion : public StlTest {
 protected:
  using tTable = _STL::map<u32, i32>;
  using tTexts = _STL::map<_STL::string, _STL::wstring>;

  static tTable two() {
    tTable table;
    EXPECT_TRUE(table.insert(1, 10));
    EXPECT_TRUE(table.insert(2, 20));
    return table;
  }

  static tTexts twoTexts() {
    tTexts texts;
    EXPECT_TRUE(texts.insert(_STL::string("one"), _STL::wstring(L"1")));
    EXPECT_TRUE(texts.insert(_STL::string("two"), _STL::wstring(L"2")));
    return texts;
  }
};

TEST_F(StlMapExhaustion, CopyNoticesEveryEntryThatCannotBeCopied) {
  tTable const table = two();
  EXPECT_EQ(exhaustConstruction([&] { return tTable(table); }), 2u);
  tTexts const texts = twoTexts();
  EXPECT_EQ(exhaustConstruction([&] { return tTexts(texts); }), 6u);
}

TEST_F(StlMapExhaustion, AssignmentKeepsTheOldEntries) {
  tTexts texts = twoTexts();
  ASSERT_TRUE(texts.insert(_STL::string("three"), _STL::wstring(L"3")));
  auto const assigns = [&](tTexts& target) {
    target = texts;
    return target.size() == texts.size();
  };
  EXPECT_EQ(exhaust(twoTexts, assigns), 9u);
}

TEST_F(StlMapExhaustion, AssignmentToItselfNeedsNoMemory) {
  auto const assigns = [](tTexts& texts) {
    tTexts const& same = texts;
    texts = same;
    return true;
  };
  EXPECT_EQ(exhaust(twoTexts, assigns), 0u);
}

TEST_F(StlMapExhaustion, InsertKeepsTheOldEntries) {
  auto const inserts = [](tTable& table) { return table.insert(3, 30); };
  EXPECT_EQ(exhaust(two, inserts), 1u);
}

TEST_F(StlMapExhaustion, InsertNeedsBothCopiesAndTheNode) {
  _STL::string const key("three");
  _STL::wstring const value(L"3");
  auto const inserts = [&](tTexts& texts) { return texts.insert(key, value); };
  EXPECT_EQ(exhaust(twoTexts, inserts), 3u);
}

TEST_F(StlMapExhaustion, ExhaustionAndATakenKeyCanBeToldApart) {
  tTable table = two();
  allocator.failNth(1);
  EXPECT_FALSE(table.insert(3, 30));
  EXPECT_FALSE(table.contains(3));
  EXPECT_TRUE(table.hasFailed());
  table.clearFailure();
  EXPECT_FALSE(table.insert(2, 30));
  EXPECT_TRUE(table.contains(2));
  EXPECT_FALSE(table.hasFailed());
}

TEST_F(StlMapExhaustion, TakenKeyNeedsNoMemory) {
  tTexts texts = twoTexts();
  _STL::string const key("one");
  _STL::wstring const value(L"other");
  size_t const calls = allocator.calls();
  EXPECT_FALSE(texts.insert(key, value));
  EXPECT_EQ(allocator.calls(), calls);
}

TEST_F(StlMapExhaustion, ValueToBeMovedIsUntouchedByAFailure) {
  tTexts texts;
  _STL::string const key("key");
  _STL::wstring value(L"value");
  for (u32 n = 1; n <= 2; ++n) {
    allocator.failNth(n);
    EXPECT_FALSE(texts.insert(key, _STL::move(value)));
    EXPECT_TRUE(value == L"value");
  }
  EXPECT_TRUE(texts.insert(key, _STL::move(value)));
  EXPECT_TRUE(*texts.find(key) == L"value");
}

TEST_F(StlMapExhaustion, EraseNeedsNoMemory) {
  auto const erases = [](auto& texts) { return texts.erase(texts.begin()->key); };
  EXPECT_EQ(exhaust(twoTexts, erases), 0u);
}
