#include "exhaust.h"

class StlListExhaustion : public StlTest {
 protected:
  using tHandles = _STL::list<u32>;
  using tTexts = _STL::list<_STL::string>;

  static tHandles two() {
    tHandles handles;
    EXPECT_TRUE(handles.push_back(1));
    EXPECT_TRUE(handles.push_back(2));
    return handles;
  }

  static tTexts twoTexts() {
    tTexts texts;
    EXPECT_TRUE(texts.push_back(_STL::string("one")));
    EXPECT_TRUE(texts.push_back(_STL::string("two")));
    return texts;
  }
};

TEST_F(StlListExhaustion, CopyNoticesEveryElementThatCannotBeCopied) {
  tHandles const handles = two();
  EXPECT_EQ(exhaustConstruction([&] { return tHandles(handles); }), 2u);
  tTexts const texts = twoTexts();
  EXPECT_EQ(exhaustConstruction([&] { return tTexts(texts); }), 4u);
}

TEST_F(StlListExhaustion, AssignmentKeepsTheOldElements) {
  tTexts texts = twoTexts();
  ASSERT_TRUE(texts.push_back(_STL::string("three")));
  auto const assigns = [&](tTexts& target) {
    target = texts;
    return target.size() == texts.size();
  };
  EXPECT_EQ(exhaust(twoTexts, assigns), 6u);
}

TEST_F(StlListExhaustion, AssignmentToItselfNeedsNoMemory) {
  auto const assigns = [](tTexts& texts) {
    tTexts const& same = texts;
    texts = same;
    return true;
  };
  EXPECT_EQ(exhaust(twoTexts, assigns), 0u);
}

TEST_F(StlListExhaustion, AddingAnElementKeepsTheOldOnes) {
  EXPECT_EQ(exhaust(two, [](auto& handles) { return handles.push_back(3); }), 1u);
  EXPECT_EQ(exhaust(two, [](auto& handles) { return handles.push_front(3); }), 1u);
  EXPECT_EQ(exhaust(two, [](auto& handles) { return handles.insert(++handles.begin(), 3); }), 1u);
}

TEST_F(StlListExhaustion, AddingATextNeedsItsCopyAndTheNode) {
  _STL::string const three("three");
  EXPECT_EQ(exhaust(twoTexts, [&](auto& texts) { return texts.push_back(three); }), 2u);
  EXPECT_EQ(exhaust(twoTexts, [&](auto& texts) { return texts.push_front(texts.back()); }), 2u);
}

TEST_F(StlListExhaustion, ValueToBeMovedIsUntouchedByAFailure) {
  tTexts texts;
  _STL::string text("text");
  allocator.failNth(1);
  EXPECT_FALSE(texts.push_back(_STL::move(text)));
  EXPECT_TRUE(text == "text");
  allocator.failNth(0);
  EXPECT_TRUE(texts.push_back(_STL::move(text)));
  EXPECT_TRUE(texts.front() == "text");
}

TEST_F(StlListExhaustion, TakingOutNeedsNoMemory) {
  auto const removes = [](auto& texts) {
    texts.pop_back();
    return texts.remove(texts.front()) == 1;
  };
  EXPECT_EQ(exhaust(twoTexts, removes), 0u);
}
