// The call stack that a status keeps.

#define OXDIAG_COMPONENT "callStackTests"

#include "conformance/harness.h"
#include "oxdiagk/statusMacros.h"
#include "support/callerCodes.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

constexpr u32 kNowhere = 0xFFFFFFFF;

// Where the caller of the function under test goes on.
u64 returnAddress = 0;

#define KEEP_RETURN_ADDRESS() returnAddress = reinterpret_cast<u64>(__builtin_return_address(0))

// The macro is the last thing that this function does.
__attribute__((noinline)) void setLast(tStatus2& status, i32 code) {
  KEEP_RETURN_ADDRESS();
  OXDIAG_SET_STATUS(status, code);
}

__attribute__((noinline)) u32 describe(tStatus2& status,
                                       nOXDIAG100::iStatus2Description const& description) {
  KEEP_RETURN_ADDRESS();
  u32 const result = status.setDescription(description);
  return result + 1;
}

__attribute__((noinline)) void setDeep(tStatus2& status, u32 depth) {
  if (depth == 0) {
    OXDIAG_SET_STATUS(status, kError);
  } else {
    setDeep(status, depth - 1);
  }
  __asm__ volatile("");
}

u32 indexOf(tStatus2 const& status, u64 address) {
  u64 addresses[tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  for (u32 i = 0; i != tStatus2::kStackTraceLength; ++i) {
    if (addresses[i] == address) return i;
  }
  return kNowhere;
}

}  // namespace

TEST(StatusCallStack, HoldsTheFunctionThatSetTheStatusAndItsCaller) {
  tStatus2 status;
  setLast(status, kError);
  u32 const index = indexOf(status, returnAddress);
  // In front of it stand one frame of the library and the function's own, and where nothing is
  // optimised the macro's too.
#if defined(__OPTIMIZE__)
  EXPECT_EQ(index, u32{2});
#else
  EXPECT_EQ(index, u32{3});
#endif
}

TEST(StatusCallStack, HoldsTheCallerOfThePlainCodeInterface) {
  tStatus2 status(kError);
  tTestDescription const description(42);
  EXPECT_EQ(describe(status, description), u32{2});
  u32 const index = indexOf(status, returnAddress);
  EXPECT_TRUE(index == 2 || index == 3);
}

TEST(StatusCallStack, HoldsTenAddressesOfADeepStack) {
  tStatus2 status;
  setDeep(status, 20);
  EXPECT_EQ(indexOf(status, 0), kNowhere);
}

TEST(StatusCallStack, HoldsNoneOfAStatusSetWithoutIt) {
  tStatus2 status;
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kError);
  EXPECT_EQ(indexOf(status, 0), u32{0});
}
