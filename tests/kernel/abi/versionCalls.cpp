// How a version crosses the border of the module: a result in memory that the caller names first,
// arguments by address. Clients of other compilers rely on it.

#include "conformance/harness.h"
#include "oxdiagk/version.h"
#include "vexk/statusCodes.h"

namespace {

using tAsk = void*(void* result, i32* status);
using tCompare = void(u32 const* newestWanted, u32 const* oldestWanted, i32* status,
                      char const* component);

template <class Raw, class Function>
Raw* rawCall(Function* function) {
  return reinterpret_cast<Raw*>(reinterpret_cast<void*>(function));
}

// The version that `function` stores, with a word on each side that it must not touch.
u32 storedBy(tAsk* function) {
  u32 words[] = {0x11111111, 0x22222222, 0x33333333};
  i32 status = 5;
  EXPECT_TRUE(function(&words[1], &status) == &words[1]);
  EXPECT_EQ(words[0], u32{0x11111111});
  EXPECT_EQ(words[2], u32{0x33333333});
  EXPECT_EQ(status, 5);
  return words[1];
}

}  // namespace

TEST(VersionCalls, AVersionIsStoredWhereTheFirstArgumentPoints) {
  i32 status = 0;
  EXPECT_EQ(storedBy(rawCall<tAsk>(&nOXDIAG100::getCurrentVersion)),
            nOXDIAG100::getCurrentVersion(status).getPacked());
  EXPECT_EQ(storedBy(rawCall<tAsk>(&nOXDIAG100::getOldestCompatibleVersion)), u32{0x01001007});
}

TEST(VersionCalls, ARangeIsTakenFromItsAddresses) {
  tCompare* const compare = rawCall<tCompare>(&nOXDIAG100::compareVersion);
  u32 const first = 0;
  u32 const last = 0xFFFFFFFF;
  i32 status = 0;
  compare(&last, &first, &status, "raw");
  EXPECT_EQ(status, 0);
  compare(&last, &last, &status, "raw");
  EXPECT_EQ(status, kStatusVersionMismatch);
}
