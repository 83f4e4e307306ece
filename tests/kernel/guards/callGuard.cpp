// That calls through pointers go by way of the guard, with a stand-in for the kernel's.

#include "conformance/harness.h"
#include "guards/moduleGuards.h"
#include "oxdiagk/tunnelRequest.h"
#include "vexk/iLib.h"
#include "wine/redirect.h"

extern "C" {

constinit u64 guardedCalls = 0;

// As the kernel's: the target is in rax, every other register may hold an argument.
__attribute__((naked)) void countAndCall() {
  __asm__(
      "lock incq guardedCalls(%rip)\n\t"
      "jmpq *%rax");
}
}

extern "C" char const __ImageBase;

namespace {

// Counts the guarded calls of a module while it lives.
class tCountedCalls {
 public:
  explicit tCountedCalls(void const* module)
      : place(static_cast<void**>(const_cast<void*>(guardsAt(module)->guardDispatch))),
        former(*place),
        isThere(redirect(place, reinterpret_cast<void*>(&countAndCall))) {
    guardedCalls = 0;
  }
  ~tCountedCalls() { redirect(place, former); }
  tCountedCalls(tCountedCalls const&) = delete;
  tCountedCalls& operator=(tCountedCalls const&) = delete;

 private:
  void** place;
  void* former;

 public:
  bool isThere;
};

u64 weigh(u64 a, u64 b, u64 c, u64 d, u64 e, u64 f) {
  return a + 10 * b + 100 * c + 1000 * d + 10000 * e + 100000 * f;
}

constinit u64 (*volatile weighing)(u64, u64, u64, u64, u64, u64) = &weigh;

}  // namespace

TEST(CallGuard, WithoutTheKernelsTheCallIsMade) {
  EXPECT_EQ(weighing(1, 2, 3, 4, 5, 6), u64{654321});
}

TEST(CallGuard, WithTheKernelsTheCallGoesThroughIt) {
  tCountedCalls const calls(&__ImageBase);
  ASSERT_TRUE(calls.isThere);
  EXPECT_EQ(weighing(1, 2, 3, 4, 5, 6), u64{654321});
  EXPECT_EQ(guardedCalls, u64{1});
}

TEST(CallGuard, AVirtualCallOfTheLibraryGoesThroughIt) {
  constexpr u64 kBadAddress = 16;
  tCountedCalls const calls(reinterpret_cast<void const*>(&iLib::deliver));
  ASSERT_TRUE(calls.isThere);
  i32 status = 0;
  iLib::deliver(nOXDIAG100::kTunnelName, __builtin_strlen(nOXDIAG100::kTunnelName), kBadAddress,
                status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(guardedCalls, u64{1});
}
