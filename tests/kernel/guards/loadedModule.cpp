// That nothing is read of an image whose pages are not in memory.

#include "vexk/loadedModule.h"

#include "conformance/harness.h"
#include "guards/tWatchedImport.h"

namespace {

BOOLEAN isNowhere(void* /*address*/) {
  return 0;
}

}  // namespace

TEST(LoadedModuleGuards, OfHeadersThatAreNotInMemoryNothingIsTold) {
  tWatchedImport const watch("MmIsAddressValid", reinterpret_cast<void*>(&isNowhere));
  ASSERT_TRUE(watch.countModules() > 0);
  tLoadedModule module = {};
  EXPECT_EQ(_vexFindModule(reinterpret_cast<u64>(&_vexFindModule), &module), u32{1});
  EXPECT_NE(module.base, u64{0});
  EXPECT_EQ(module.size, u64{0});
  EXPECT_EQ(module.identitySize, 0);
  EXPECT_EQ(module.name[0], '\0');
}
