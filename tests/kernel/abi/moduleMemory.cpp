// The operators that a module has for what says nothing about its memory.

#include "conformance/harness.h"
#include "guards/tWatchedImport.h"
#include "ntos/pool.h"
#include "vexk/memory.h"

// The compiler knows these only when it is told to use them.
void operator delete(void* block, size_t size) noexcept;
void operator delete[](void* block, size_t size) noexcept;

namespace {

// The compiler thinks that a plain operator never fails; it does not know these.
using tNew = void*(size_t size);

constinit tNew* volatile newObject = &::operator new;
constinit tNew* volatile newArray = &::operator new[];

constinit u32 blocksGivenBack = 0;

void noteGivenBack(void* block, u32 tag) {
  ++blocksGivenBack;
  ExFreePoolWithTag(block, tag);
}

}  // namespace

TEST(ModuleMemory, IsThatOfThePlatform) {
  void* const block = newObject(40);
  EXPECT_TRUE(block != nullptr);
  EXPECT_EQ(reinterpret_cast<u64>(block) % 16, u64{0});
  _memDelete(block);
  i32 status = 0;
  ::operator delete(_memNewUsingCRT(40, kMemLongLived, status));
  EXPECT_EQ(status, 0);
}

TEST(ModuleMemory, TheSizeOfADeleteIsIgnored) {
  void* const none = nullptr;
  ::operator delete (newObject(40), size_t{1});
  ::operator delete[](newArray(40), size_t{1} << 40);
  ::operator delete (none, size_t{8});
  ::operator delete[](none, size_t{8});
}

TEST(ModuleMemory, ThereIsNoneOfAnImpossibleSize) {
  EXPECT_TRUE(newObject(size_t{1} << 62) == nullptr);
  EXPECT_TRUE(newArray(size_t{1} << 62) == nullptr);
}

TEST(ModuleMemory, EveryDeleteGivesItsBlockBack) {
  tWatchedImport const watch("ExFreePoolWithTag", reinterpret_cast<void*>(&noteGivenBack));
  ASSERT_TRUE(watch.countModules() > 0);
  blocksGivenBack = 0;
  ::operator delete(newObject(40));
  EXPECT_EQ(blocksGivenBack, u32{1});
  ::operator delete[](newArray(40));
  EXPECT_EQ(blocksGivenBack, u32{2});
  ::operator delete (newObject(40), size_t{40});
  EXPECT_EQ(blocksGivenBack, u32{3});
  ::operator delete[](newArray(40), size_t{40});
  EXPECT_EQ(blocksGivenBack, u32{4});
}
