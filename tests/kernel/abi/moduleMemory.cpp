// The operators that a module has for what says nothing about its memory.

#include "conformance/harness.h"
#include "vexk/memory.h"

TEST(ModuleMemory, IsThatOfThePlatform) {
  void* const block = ::operator new(40);
  EXPECT_TRUE(block != nullptr);
  EXPECT_EQ(reinterpret_cast<u64>(block) % 16, u64{0});
  _memDelete(block);
  i32 status = 0;
  ::operator delete(_memNewUsingCRT(40, kMemLongLived, status));
  EXPECT_EQ(status, 0);
}

TEST(ModuleMemory, TheSizeOfADeleteIsIgnored) {
  ::operator delete (::operator new(40), size_t{1});
  ::operator delete[](::operator new[](40), size_t{1} << 40);
  ::operator delete (nullptr, size_t{8});
  ::operator delete[](nullptr, size_t{0});
}

TEST(ModuleMemory, ThereIsNoneOfAnImpossibleSize) {
  size_t volatile const impossible = size_t{1} << 62;
  EXPECT_TRUE(::operator new(impossible) == nullptr);
  EXPECT_TRUE(::operator new[](impossible) == nullptr);
}
