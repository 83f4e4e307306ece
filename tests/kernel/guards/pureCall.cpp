// What a call of a pure virtual operation comes to in a module.

#include "conformance/harness.h"
#include "guards/tWatchedImport.h"
#include "ntos/status.h"

extern "C" int _purecall();

namespace {

constinit u32 pureCallsTold = 0;

u32 noteTold(u32 /*component*/, u32 /*level*/, char const* /*format*/, __builtin_va_list) {
  ++pureCallsTold;
  return STATUS_SUCCESS;
}

bool isHalted() {
  __try {
    _purecall();
  } __except (1) {
    return true;
  }
  return false;
}

}  // namespace

TEST(PureCall, IsToldAndHalts) {
  tWatchedImport const prints("vDbgPrintEx", reinterpret_cast<void*>(&noteTold));
  ASSERT_TRUE(prints.countModules() > 0);
  pureCallsTold = 0;
  EXPECT_TRUE(isHalted());
  EXPECT_EQ(pureCallsTold, u32{1});
}
