#include "exhaust.h"

class StlVectorExhaustion : public StlTest {
 protected:
  using tNumbers = _STL::vector<i32>;
  using tTexts = _STL::vector<_STL::wstring>;
  using tNested = _STL::vector<_STL::vector<_STL::string>>;

  // Storage without a free place.
  static tNumbers full() {
    i32 const values[] = {1, 2, 3};
    tNumbers numbers;
    EXPECT_TRUE(numbers.assign(values, 3));
    EXPECT_EQ(numbers.capacity(), numbers.size());
    return numbers;
  }

  static tTexts fullOfTexts() {
    _STL::wstring const values[] = {_STL::wstring(L"one"), _STL::wstring(L"two")};
    tTexts texts;
    EXPECT_TRUE(texts.assign(values, 2));
    return texts;
  }

  static tNested nested() {
    _STL::vector<_STL::string> inner;
    EXPECT_TRUE(inner.push_back(_STL::string("one")));
    EXPECT_TRUE(inner.push_back(_STL::string("two")));
    tNested outer;
    EXPECT_TRUE(outer.push_back(inner));
    EXPECT_TRUE(outer.push_back(inner));
    return outer;
  }
};

TEST_F(StlVectorExhaustion, CopyIsEmptyWithoutMemory) {
  tNumbers const numbers = full();
  EXPECT_EQ(exhaustConstruction([&] { return tNumbers(numbers); }), 1u);
}

TEST_F(StlVectorExhaustion, CopyNoticesEveryElementThatCannotBeCopied) {
  tTexts const texts = fullOfTexts();
  EXPECT_EQ(exhaustConstruction([&] { return tTexts(texts); }), 3u);
  tNested const vectors = nested();
  EXPECT_EQ(exhaustConstruction([&] { return tNested(vectors); }), 7u);
}

TEST_F(StlVectorExhaustion, AssignmentKeepsTheOldElements) {
  tNumbers numbers = full();
  ASSERT_TRUE(numbers.push_back(4));
  auto const assigns = [&](tNumbers& target) {
    target = numbers;
    return target == numbers;
  };
  EXPECT_EQ(exhaust(full, assigns), 1u);
}

TEST_F(StlVectorExhaustion, AssignmentToItselfNeedsNoMemory) {
  auto const assigns = [](tTexts& texts) {
    tTexts const& same = texts;
    texts = same;
    return true;
  };
  EXPECT_EQ(exhaust(fullOfTexts, assigns), 0u);
}

TEST_F(StlVectorExhaustion, AssignmentNoticesEveryElementThatCannotBeCopied) {
  tTexts texts = fullOfTexts();
  texts[0][0] = L'X';
  auto const assigns = [&](tTexts& target) {
    target = texts;
    return target == texts;
  };
  EXPECT_EQ(exhaust(fullOfTexts, assigns), 3u);
  EXPECT_EQ(exhaust(fullOfTexts, [&](auto& target) { return target.assign(texts.data(), 2); }), 3u);
}

TEST_F(StlVectorExhaustion, AddingAnElementKeepsTheOldOnes) {
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.push_back(4); }), 1u);
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.insert(1, 4); }), 1u);
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.push_back(numbers[0]); }), 1u);
}

TEST_F(StlVectorExhaustion, AddingATextNeedsItsCopyAndThePlace) {
  _STL::wstring const three(L"three");
  EXPECT_EQ(exhaust(fullOfTexts, [&](auto& texts) { return texts.push_back(three); }), 2u);
  EXPECT_EQ(exhaust(fullOfTexts, [&](auto& texts) { return texts.insert(0, three); }), 2u);
  EXPECT_EQ(exhaust(fullOfTexts, [&](auto& texts) { return texts.push_back(texts[1]); }), 2u);
}

TEST_F(StlVectorExhaustion, AddingAVectorNeedsItsElementsAndThePlace) {
  _STL::vector<_STL::string> inner;
  ASSERT_TRUE(inner.push_back(_STL::string("three")));
  tNested const source = nested();
  auto const fullNested = [&] { return tNested(source); };
  auto const adds = [&](tNested& vectors) { return vectors.push_back(inner); };
  EXPECT_EQ(exhaust(fullNested, adds), 3u);
}

TEST_F(StlVectorExhaustion, ValueToBeMovedIsUntouchedByAFailure) {
  tTexts texts = fullOfTexts();
  _STL::wstring three(L"three");
  allocator.failNth(1);
  EXPECT_FALSE(texts.push_back(_STL::move(three)));
  EXPECT_TRUE(three == L"three");
  allocator.failNth(0);
  EXPECT_TRUE(texts.push_back(_STL::move(three)));
  EXPECT_TRUE(three.empty());
  EXPECT_TRUE(texts.back() == L"three");
}

TEST_F(StlVectorExhaustion, ReserveAndResizeKeepTheOldElements) {
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.reserve(50); }), 1u);
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.resize(4); }), 1u);
  EXPECT_EQ(exhaust(fullOfTexts, [](auto& texts) { return texts.resize(9); }), 1u);
}

TEST_F(StlVectorExhaustion, ShrinkingNeedsNoMemory) {
  auto const erases = [](auto& texts) {
    texts.erase(0);
    texts.pop_back();
    return texts.empty();
  };
  EXPECT_EQ(exhaust(fullOfTexts, erases), 0u);
  EXPECT_EQ(exhaust(full, [](auto& numbers) { return numbers.resize(1); }), 0u);
}

TEST_F(StlVectorExhaustion, EmptyVectorIsCopiedWithoutMemory) {
  tTexts const none;
  size_t const calls = allocator.calls();
  tTexts copy(none);
  EXPECT_TRUE(copy.empty());
  copy = none;
  EXPECT_EQ(allocator.calls(), calls);
}
