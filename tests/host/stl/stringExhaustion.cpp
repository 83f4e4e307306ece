#include "exhaust.h"

class StlStringExhaustion : public StlTest {
 protected:
  // As long as the smallest storage can hold: whatever adds to it must grow.
  static _STL::string full() { return _STL::string("123456789012345"); }
  static _STL::wstring wideFull() { return _STL::wstring(L"123456789012345"); }
};

TEST_F(StlStringExhaustion, ConstructionIsEmptyWithoutMemory) {
  EXPECT_EQ(exhaustConstruction([] { return _STL::string("slot"); }), 1u);
  EXPECT_EQ(exhaustConstruction([] { return _STL::string("slot", 2); }), 1u);
  EXPECT_EQ(exhaustConstruction([] { return _STL::wstring(L"slot"); }), 1u);
}

TEST_F(StlStringExhaustion, CopyIsEmptyWithoutMemory) {
  _STL::string const source("slot");
  EXPECT_EQ(exhaustConstruction([&] { return _STL::string(source); }), 1u);
}

TEST_F(StlStringExhaustion, AssignmentKeepsTheOldText) {
  _STL::string const source("a text that is longer than the old one");
  auto const assigns = [&](_STL::string& text) {
    text = source;
    return text == source;
  };
  EXPECT_EQ(exhaust(full, assigns), 1u);
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.assign(source); }), 1u);
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.assign(source.c_str()); }), 1u);
}

TEST_F(StlStringExhaustion, AppendKeepsTheOldText) {
  _STL::string const more("more");
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.append(more); }), 1u);
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.append("more"); }), 1u);
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.append("more", 1); }), 1u);
  EXPECT_EQ(exhaust(full, [&](auto& text) { return text.push_back('m'); }), 1u);
  EXPECT_EQ(exhaust(wideFull, [&](auto& text) { return text.append(L"more"); }), 1u);
}

TEST_F(StlStringExhaustion, AppendOfItselfKeepsTheOldText) {
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.append(text); }), 1u);
}

TEST_F(StlStringExhaustion, InsertKeepsTheOldText) {
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.insert(3, "more"); }), 1u);
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.insert(3, text.c_str() + 1, 5); }), 1u);
}

TEST_F(StlStringExhaustion, InsertOfOwnTextWithRoomKeepsTheOldText) {
  auto const roomy = [] {
    _STL::string text("abcdef");
    text.reserve(100);
    return text;
  };
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.insert(3, text.c_str() + 1, 5); }), 1u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.insert(1, text.c_str(), 5); }), 1u);
}

TEST_F(StlStringExhaustion, ReserveAndResizeKeepTheOldText) {
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.reserve(200); }), 1u);
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.resize(16, 'x'); }), 1u);
}

TEST_F(StlStringExhaustion, OperationsInReservedRoomNeedNoMemory) {
  auto const roomy = [] {
    _STL::string text("abcdef");
    text.reserve(100);
    return text;
  };
  char const onTheStack[] = "more";
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.append("more"); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.append(text); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.insert(0, "more"); }), 0u);
  EXPECT_EQ(exhaust(roomy, [&](auto& text) { return text.insert(0, onTheStack); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.insert(6, text.c_str(), 3); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.insert(3, text.c_str(), 0); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.assign("other"); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.resize(100); }), 0u);
  EXPECT_EQ(exhaust(roomy, [](auto& text) { return text.reserve(100); }), 0u);
}

TEST_F(StlStringExhaustion, ShrinkingNeedsNoMemory) {
  EXPECT_EQ(exhaust(full, [](auto& text) { return text.resize(3); }), 0u);
  auto const erases = [](auto& text) {
    text.erase(2, 3);
    return true;
  };
  EXPECT_EQ(exhaust(full, erases), 0u);
}

TEST_F(StlStringExhaustion, EmptyTextIsAssignedAndAppendedWithoutMemory) {
  auto const nothing = [] { return _STL::string(); };
  EXPECT_EQ(exhaust(nothing, [](auto& text) { return text.append(""); }), 0u);
  EXPECT_EQ(exhaust(nothing, [](auto& text) { return text.assign(""); }), 0u);
  EXPECT_EQ(exhaust(nothing, [](auto& text) { return text.reserve(0); }), 0u);
}
