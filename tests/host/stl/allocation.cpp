#include "content.h"
#include "testAllocator.h"

class StlAllocation : public StlTest {
 protected:
  // How many allocations `work` makes.
  template <class Work>
  size_t callsOf(Work work) {
    size_t const before = allocator.calls();
    work();
    return allocator.calls() - before;
  }
};

TEST_F(StlAllocation, EmptyContainersHoldNoMemory) {
  EXPECT_EQ(callsOf([] {
              _STL::string text;
              _STL::vector<i32> numbers;
              _STL::list<i32> elements;
              _STL::map<i32, i32> table;
            }),
            0u);
}

TEST_F(StlAllocation, MovingAndSwappingAllocateNothing) {
  _STL::string text("text");
  _STL::vector<_STL::string> texts;
  ASSERT_TRUE(texts.push_back(text));
  EXPECT_EQ(callsOf([&] {
              _STL::string moved(_STL::move(text));
              text = _STL::move(moved);
              _STL::vector<_STL::string> other(_STL::move(texts));
              other.swap(texts);
            }),
            0u);
  EXPECT_TRUE(texts[0] == "text");
}

TEST_F(StlAllocation, ContainersAreLongLivedUnlessTheirTypeSaysOtherwise) {
  _STL::string text("text");
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryLongLived);
  _STL::basic_string<wchar_t, _STL::kMemoryScratch> scratchText(L"text");
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryScratch);
  _STL::vector<i32> numbers;
  ASSERT_TRUE(numbers.push_back(1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryLongLived);
  _STL::vector<i32, _STL::kMemoryScratch> scratchNumbers;
  ASSERT_TRUE(scratchNumbers.push_back(1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryScratch);
}

TEST_F(StlAllocation, NodesAreLongLivedUnlessTheirTypeSaysOtherwise) {
  _STL::list<i32> elements;
  ASSERT_TRUE(elements.push_back(1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryLongLived);
  _STL::list<i32, _STL::kMemoryScratch> scratchElements;
  ASSERT_TRUE(scratchElements.push_back(1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryScratch);
  _STL::map<i32, i32> table;
  ASSERT_TRUE(table.insert(1, 1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryLongLived);
  _STL::map<i32, i32, _STL::less<i32>, _STL::kMemoryScratch> scratchTable;
  ASSERT_TRUE(scratchTable.insert(1, 1));
  EXPECT_EQ(allocator.lastFlags(), _STL::kMemoryScratch);
}

TEST_F(StlAllocation, GrowthDoublesTheRoom) {
  EXPECT_EQ(callsOf([] {
              _STL::string text;
              for (u32 i = 0; i < 100000; ++i) {
                ASSERT_TRUE(text.push_back('x'));
              }
              EXPECT_EQ(text.capacity(), size_t{15} << 13);
            }),
            14u);
  EXPECT_EQ(callsOf([] {
              _STL::vector<u32> numbers;
              for (u32 i = 0; i < 100000; ++i) {
                ASSERT_TRUE(numbers.push_back(i));
              }
              EXPECT_EQ(numbers.capacity(), size_t{4} << 15);
            }),
            16u);
}

TEST_F(StlAllocation, ResizeStepByStepGrowsInDoublings) {
  EXPECT_LE(callsOf([] {
              _STL::vector<u32> numbers;
              _STL::string text;
              for (size_t size = 1; size < 1000; ++size) {
                ASSERT_TRUE(numbers.resize(size));
                ASSERT_TRUE(text.resize(size, 'x'));
              }
            }),
            18u);
}

TEST_F(StlAllocation, NodeContainersAllocateOncePerElement) {
  EXPECT_EQ(callsOf([] {
              _STL::list<u32> elements;
              _STL::map<u32, u32> table;
              for (u32 i = 0; i < 100; ++i) {
                ASSERT_TRUE(elements.push_back(i));
                ASSERT_TRUE(table.insert(i, i));
              }
            }),
            200u);
}

TEST_F(StlAllocation, LargestTextIsAskedForAndOneMoreIsNot) {
  _STL::wstring text;
  size_t const largest = _STL::wstring::max_size();
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.reserve(largest - 1)); }), 1u);
  EXPECT_EQ(allocator.lastSize(), largest * sizeof(wchar_t));
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.reserve(largest)); }), 1u);
  EXPECT_EQ(allocator.lastSize(), (largest + 1) * sizeof(wchar_t));
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.reserve(largest + 1)); }), 0u);
  EXPECT_TRUE(text.hasFailed());
}

TEST_F(StlAllocation, LargestVectorIsAskedForAndOneMoreIsNot) {
  _STL::vector<u64> numbers;
  size_t const largest = _STL::vector<u64>::max_size();
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(numbers.reserve(largest - 1)); }), 1u);
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(numbers.reserve(largest)); }), 1u);
  EXPECT_EQ(allocator.lastSize(), largest * sizeof(u64));
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(numbers.reserve(largest + 1)); }), 0u);
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(numbers.resize(largest + 1)); }), 0u);
  EXPECT_TRUE(numbers.hasFailed());
}

TEST_F(StlAllocation, LengthSumThatOverflowsIsNotAskedFor) {
  _STL::string text("abc");
  size_t const largest = _STL::string::max_size();
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.append("x", largest - 3)); }), 1u);
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.append("x", largest - 2)); }), 0u);
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.append("x", static_cast<size_t>(-1))); }), 0u);
  EXPECT_EQ(callsOf([&] { EXPECT_FALSE(text.append("x", static_cast<size_t>(-3))); }), 0u);
  EXPECT_TRUE(text == "abc");
}
