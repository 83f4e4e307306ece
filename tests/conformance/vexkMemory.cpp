#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "vexk/memory.h"
#include "vexk/tMemBlockReferenceTemplate.h"

namespace {

class tCounted {
 public:
  VEX_MODULE_MEMORY

  ~tCounted() { ++destroyed; }
  static i32 destroyed;
  i32 value = 7;
};

constinit i32 tCounted::destroyed = 0;

struct tTwoReferences {
  tMemBlockReferenceBase source;
  tMemBlockReferenceBase target;
};

bool isAligned(void const* block) {
  return reinterpret_cast<uintptr_t>(block) % 16 == 0;
}

}  // namespace

TEST(VexkMemory, EveryBlockIsAlignedTo16Bytes) {
  for (size_t size = 0; size <= 257; ++size) {
    i32 status = 0;
    void* scratch = _memNewUsingCRT(size, kMemScratch, status);
    void* longLived = _memNewUsingCRT(size, kMemLongLived, status);
    EXPECT_TRUE(scratch != nullptr && isAligned(scratch));
    EXPECT_TRUE(longLived != nullptr && isAligned(longLived));
    EXPECT_EQ(i32{0}, status);
    _memDelete(scratch);
    _memDelete(longLived);
  }
}

TEST(VexkMemory, SizeZeroGivesABlockOfItsOwn) {
  i32 status = 0;
  void* first = _memNewUsingCRT(0, kMemLongLived, status);
  void* second = _memNewUsingCRT(0, kMemLongLived, status);
  EXPECT_TRUE(first != nullptr);
  EXPECT_TRUE(second != nullptr);
  EXPECT_TRUE(first != second);
  _memDelete(first);
  _memDelete(second);
}

TEST(VexkMemory, EveryByteOfABlockKeepsWhatIsWritten) {
  constexpr size_t kSize = 1000;
  i32 status = 0;
  auto* block = static_cast<u8*>(_memNewUsingCRT(kSize, kMemScratch, status));
  ASSERT_TRUE(block != nullptr);
  for (size_t i = 0; i < kSize; ++i) block[i] = static_cast<u8>(i * 7);
  bool kept = true;
  for (size_t i = 0; i < kSize; ++i) kept = kept && block[i] == static_cast<u8>(i * 7);
  EXPECT_TRUE(kept);
  _memDelete(block);
}

TEST(VexkMemory, AnErrorOnEntryIsKeptAndNothingIsAllocated) {
  i32 status = kEarlierError;
  EXPECT_TRUE(_memNewUsingCRT(16, kMemLongLived, status) == nullptr);
  EXPECT_EQ(kEarlierError, status);
}

TEST(VexkMemory, AWarningOnEntrySurvivesASuccess) {
  i32 status = kEarlierWarning;
  void* block = _memNewUsingCRT(16, kMemLongLived, status);
  EXPECT_TRUE(block != nullptr);
  EXPECT_EQ(kEarlierWarning, status);
  _memDelete(block);
}

TEST(VexkMemory, AnImpossibleSizeIsOutOfMemory) {
  size_t const sizes[] = {SIZE_MAX / 2, SIZE_MAX - 15, SIZE_MAX};
  for (size_t size : sizes) {
    i32 status = 0;
    EXPECT_TRUE(_memNewUsingCRT(size, kMemLongLived, status) == nullptr);
    EXPECT_EQ(kStatusOutOfMemory, status);
  }
}

TEST(VexkMemory, AWarningOnEntryBecomesOutOfMemory) {
  i32 status = kEarlierWarning;
  EXPECT_TRUE(_memNewUsingCRT(SIZE_MAX, kMemScratch, status) == nullptr);
  EXPECT_EQ(kStatusOutOfMemory, status);
}

TEST(VexkMemory, DeletingNullDoesNothing) {
  void* none = nullptr;
  _memDelete(none);
  EXPECT_TRUE(none == nullptr);
}

TEST(VexkMemory, ClassesGetOperatorsOverTheModulesMemory) {
  tCounted::destroyed = 0;
  auto* one = new tCounted;
  auto* many = new tCounted[3];
  if (one == nullptr) delete[] many;
  if (many == nullptr) delete one;
  ASSERT_TRUE(one != nullptr && many != nullptr);
  EXPECT_EQ(i32{7}, one->value);
  EXPECT_EQ(i32{7}, many[2].value);
  delete one;
  delete[] many;
  EXPECT_EQ(i32{4}, tCounted::destroyed);
}

TEST(VexkMemory, ClassesCanBeBuiltInGivenStorage) {
  alignas(tCounted) u8 storage[sizeof(tCounted)];
  auto* built = new (storage) tCounted;
  EXPECT_TRUE(static_cast<void*>(built) == static_cast<void*>(storage));
  EXPECT_EQ(i32{7}, built->value);
  built->~tCounted();
}

TEST(VexkMemoryReference, IsEmptyAtFirst) {
  tMemBlockReferenceTemplate<char> const reference;
  EXPECT_TRUE(reference.get() == nullptr);
  EXPECT_EQ(size_t{0}, reference.getSize());
}

TEST(VexkMemoryReference, OwnsTheBlockItAllocated) {
  tMemBlockReferenceTemplate<char> reference;
  i32 status = 0;
  reference.allocate(100, kMemScratch, status);
  EXPECT_EQ(i32{0}, status);
  ASSERT_TRUE(reference.get() != nullptr);
  EXPECT_TRUE(reference.getAddress() == static_cast<void*>(reference.get()));
  EXPECT_EQ(size_t{100}, reference.getSize());
  reference.get()[99] = 'x';
  reference.release();
  EXPECT_TRUE(reference.get() == nullptr);
  EXPECT_EQ(size_t{0}, reference.getSize());
}

TEST(VexkMemoryReference, ReleaseOfNothingDoesNothing) {
  tMemBlockReferenceBase reference;
  reference.release();
  EXPECT_TRUE(reference.getAddress() == nullptr);
}

TEST(VexkMemoryReference, ANewBlockReplacesTheOldOne) {
  tMemBlockReferenceBase reference;
  i32 status = 0;
  reference.allocate(10, kMemScratch, status);
  reference.allocate(20, kMemLongLived, status);
  EXPECT_TRUE(reference.getAddress() != nullptr);
  EXPECT_EQ(size_t{20}, reference.getSize());
}

TEST(VexkMemoryReference, AFailedAllocationKeepsTheOldBlock) {
  tMemBlockReferenceBase reference;
  i32 status = 0;
  reference.allocate(10, kMemScratch, status);
  void* const before = reference.getAddress();
  reference.allocate(SIZE_MAX, kMemScratch, status);
  EXPECT_EQ(kStatusOutOfMemory, status);
  EXPECT_TRUE(reference.getAddress() == before);
  EXPECT_EQ(size_t{10}, reference.getSize());
}

TEST(VexkMemoryReference, AnErrorOnEntryKeepsTheOldBlock) {
  tMemBlockReferenceBase reference;
  i32 status = 0;
  reference.allocate(10, kMemScratch, status);
  status = kEarlierError;
  reference.allocate(20, kMemScratch, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(size_t{10}, reference.getSize());
}

TEST(VexkMemoryReference, MovingTakesTheBlockAndLeavesNone) {
  tTwoReferences two;
  i32 status = 0;
  two.source.allocate(10, kMemScratch, status);
  void* const block = two.source.getAddress();
  tMemBlockReferenceBase const target(static_cast<tMemBlockReferenceBase&&>(two.source));
  EXPECT_TRUE(target.getAddress() == block);
  EXPECT_EQ(size_t{10}, target.getSize());
  EXPECT_TRUE(two.source.getAddress() == nullptr);
  EXPECT_EQ(size_t{0}, two.source.getSize());
}

TEST(VexkMemoryReference, MoveAssignmentReplacesTheBlock) {
  tTwoReferences two;
  i32 status = 0;
  two.source.allocate(10, kMemScratch, status);
  two.target.allocate(20, kMemScratch, status);
  void* const block = two.source.getAddress();
  two.target = static_cast<tMemBlockReferenceBase&&>(two.source);
  EXPECT_TRUE(two.target.getAddress() == block);
  EXPECT_EQ(size_t{10}, two.target.getSize());
  EXPECT_TRUE(two.source.getAddress() == nullptr);
  EXPECT_EQ(size_t{0}, two.source.getSize());
}

TEST(VexkMemoryReference, ATypedReferenceMovesToo) {
  tMemBlockReferenceTemplate<u32> source;
  i32 status = 0;
  source.allocate(sizeof(u32), kMemScratch, status);
  ASSERT_TRUE(source.get() != nullptr);
  *source.get() = 42;
  tMemBlockReferenceTemplate<u32> const target(
      static_cast<tMemBlockReferenceTemplate<u32>&&>(source));
  ASSERT_TRUE(target.get() != nullptr);
  EXPECT_EQ(u32{42}, *target.get());
}

TEST(VexkMemoryReference, MoveAssignmentToItselfKeepsTheBlock) {
  tMemBlockReferenceBase reference;
  i32 status = 0;
  reference.allocate(10, kMemScratch, status);
  void* const block = reference.getAddress();
  tMemBlockReferenceBase& same = reference;
  reference = static_cast<tMemBlockReferenceBase&&>(same);
  EXPECT_TRUE(reference.getAddress() == block);
}
