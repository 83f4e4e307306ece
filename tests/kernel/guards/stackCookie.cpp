// The stack cookies of the modules, and what an overrun of a buffer comes to.

#include "image/stackCookie.h"

#include "boot/tModuleImage.h"
#include "conformance/harness.h"
#include "guards/moduleGuards.h"
#include "ntos/bugCheck.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"
#include "wine/redirect.h"

extern "C" char const __ImageBase;

namespace {

struct tBugCheck {
  u32 code;
  u64 words[4];
};

constinit tBugCheck seen = {};

[[noreturn]] void noteBugCheck(u32 code, u64 first, u64 second, u64 third, u64 fourth) {
  seen = {code, {first, second, third, fourth}};
  __builtin_trap();
}

// Stands for the end of the machine while it lives.
class tCaughtEnd {
 public:
  tCaughtEnd()
      : place(tModuleImage(&__ImageBase).findImport("KeBugCheckEx")),
        former(*place),
        isThere(redirect(place, reinterpret_cast<void*>(&noteBugCheck))) {
    seen = {};
  }
  ~tCaughtEnd() { redirect(place, former); }
  tCaughtEnd(tCaughtEnd const&) = delete;
  tCaughtEnd& operator=(tCaughtEnd const&) = delete;

 private:
  void** place;
  void* former;

 public:
  bool isThere;
};

constexpr u32 kBufferSize = 16;

// Inverts so many bytes from the start of a buffer, as if there were room for any number.
__attribute__((noinline)) void invert(u32 length) {
  char volatile buffer[kBufferSize] = {};
  char volatile* byte = buffer;
  __asm__ volatile("" : "+r"(byte));
  for (u32 index = 0; index < length; ++index) byte[index] = static_cast<char>(~byte[index]);
}

bool isEnded(u32 length) {
  __try {
    invert(length);
  } __except (1) {
    return true;
  }
  return false;
}

bool isGood(u64 cookie) {
  return cookie != 0 && cookie != kUnseededCookie && (cookie & ~kCookieBits) == 0;
}

// A frame with a cookie would not survive the change.
__attribute__((noinline, no_stack_protector)) u64 seedFrom(u64 cookie) {
  u64 const former = __security_cookie;
  __security_cookie = cookie;
  seedStackCookie();
  u64 const seeded = __security_cookie;
  __security_cookie = former;
  return seeded;
}

}  // namespace

TEST(StackCookie, EveryModuleHasOneOfItsOwn) {
  void const* const modules[] = {&__ImageBase, reinterpret_cast<void const*>(&vexkInitialize),
                                 reinterpret_cast<void const*>(&qelmkInitialize),
                                 reinterpret_cast<void const*>(&oxdiagkInitialize)};
  u64 former = 0;
  for (void const* module : modules) {
    tLoadConfiguration const* const guards = guardsAt(module);
    ASSERT_TRUE(guards != nullptr && guards->securityCookie != nullptr);
    EXPECT_TRUE(isGood(*guards->securityCookie));
    EXPECT_NE(*guards->securityCookie, former);
    former = *guards->securityCookie;
  }
  EXPECT_TRUE(guardsAt(&__ImageBase)->securityCookie == &__security_cookie);
}

TEST(StackCookie, AnImageWithoutOneGetsOneAtItsEntry) {
  u64 const first = seedFrom(kUnseededCookie);
  u64 const second = seedFrom(kUnseededCookie);
  EXPECT_TRUE(isGood(first) && isGood(second));
  EXPECT_NE(first, second);
}

TEST(StackCookie, NoBitOfItIsAlwaysTheSame) {
  constexpr u32 kSeeds = 64;
  u64 everSet = 0;
  u64 everClear = 0;
  for (u32 round = 0; round < kSeeds; ++round) {
    u64 const seed = seedFrom(kUnseededCookie);
    everSet |= seed;
    everClear |= ~seed;
  }
  EXPECT_EQ(everSet, kCookieBits);
  EXPECT_EQ(everClear, ~u64{0});
}

TEST(StackCookie, TheOneOfTheLoaderStays) {
  EXPECT_EQ(seedFrom(7), u64{7});
}

TEST(StackCookie, AFullBufferIsGood) {
  tCaughtEnd const end;
  ASSERT_TRUE(end.isThere);
  EXPECT_FALSE(isEnded(kBufferSize));
  EXPECT_EQ(seen.code, u32{0});
}

TEST(StackCookie, OneByteMoreEndsTheMachine) {
  tCaughtEnd const end;
  ASSERT_TRUE(end.isThere);
  EXPECT_TRUE(isEnded(kBufferSize + 1));
  EXPECT_EQ(seen.code, DRIVER_OVERRAN_STACK_BUFFER);
  EXPECT_EQ(seen.words[0] ^ __security_cookie, u64{0xFF});
  EXPECT_EQ(seen.words[1], __security_cookie);
  EXPECT_EQ(seen.words[2], ~__security_cookie);
  EXPECT_EQ(seen.words[3], u64{0});
}

// The result of the function that is about to return, and more, is in them.
TEST(StackCookie, ACheckLeavesTheRegistersAlone) {
  u64 result = 1;
  u64 second = 2;
  u64 cookie = __security_cookie;
  register u64 eighth __asm__("r8") = 8;
  register u64 ninth __asm__("r9") = 9;
  register u64 tenth __asm__("r10") = 10;
  register u64 eleventh __asm__("r11") = 11;
  __asm__ volatile("callq __security_check_cookie"
                   : "+a"(result), "+d"(second), "+c"(cookie), "+r"(eighth), "+r"(ninth),
                     "+r"(tenth), "+r"(eleventh)
                   :
                   : "cc", "memory");
  u64 const seenRegisters[] = {result, second, eighth, ninth, tenth, eleventh};
  u64 const wanted[] = {1, 2, 8, 9, 10, 11};
  EXPECT_EQ(__builtin_memcmp(seenRegisters, wanted, sizeof(wanted)), 0);
  EXPECT_EQ(cookie, __security_cookie);
}
