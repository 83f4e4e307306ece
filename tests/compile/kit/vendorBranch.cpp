// The branch of platform/compiler for the vendor's compiler as a program: mingw-w64 has the
// intrinsics and headers that the branch includes, under their names. Says what is wrong and
// returns how much that is.

#include <stdio.h>
#include <windows.h>

#include "compiler/msvc/bytes.h"
#include "compiler/msvc/calls.h"
#include "compiler/msvc/constants.h"
#include "compiler/msvc/machine.h"
#include "compiler/msvc/refusals.h"
#include "compiler/msvc/words.h"
#include "compiler/traits.h"
#include "compiler/types.h"

namespace {

int faults = 0;

// Of two threads: in each round each stores its own word, then loads the other's. In one order, one
// of them sees the other's store.
constexpr u32 kRounds = 20000;
u32 words[2][16];
u32 seen[2][16];
u32 arrived[2][16];

void expect(bool held, char const* what) {
  if (held) return;
  ++faults;
  printf("%s\n", what);
}

enum tMood : u16 { kGood = 0x1234, kBad = 0xEDCB };

// A word between others, which a store must leave alone.
template <class T>
struct tBetween {
  T before;
  T word;
  T behind;
};

template <class T>
void checkWord(T rest, T one, T two, char const* what) {
  tBetween<T> all = {rest, rest, rest};
  nCompiler::storeRelaxed(all.word, one);
  expect(nCompiler::loadRelaxed(all.word) == one, what);
  nCompiler::storeRelease(all.word, two);
  expect(nCompiler::loadAcquire(all.word) == two, what);
  nCompiler::storeOrdered(all.word, one);
  expect(nCompiler::loadOrdered(all.word) == one, what);
  expect(all.before == rest && all.behind == rest, what);
}

void checkWords() {
  checkWord<u8>(0x55, 0, 0xFF, "8 bits");
  checkWord<i8>(0x55, -128, 127, "8 bits with a sign");
  checkWord<bool>(false, true, false, "bool");
  checkWord<u16>(0x5555, 0, 0xFFFF, "16 bits");
  checkWord<tMood>(kGood, kBad, kGood, "an enumerator");
  checkWord<u32>(0x55555555, 0, 0xFFFFFFFF, "32 bits");
  checkWord<i32>(0x55555555, -1, 0x7FFFFFFF, "32 bits with a sign");
  checkWord<u64>(0x5555555555555555, 0, 0xFFFFFFFFFFFFFFFF, "64 bits");
  checkWord<void*>(&faults, nullptr, &words, "a pointer");
}

void meet(u32 self, u32 round) {
  nCompiler::storeRelease(arrived[self][0], round);
  for (u32 spins = 1; nCompiler::loadAcquire(arrived[1 - self][0]) < round; ++spins) {
    if (spins % 256 == 0) SwitchToThread();
  }
}

DWORD WINAPI runRounds(void* argument) {
  u32 const self = argument != nullptr;
  for (u32 round = 1; round <= kRounds; ++round) {
    meet(self, 3 * round);
    nCompiler::storeOrdered(words[self][0], round);
    seen[self][0] = nCompiler::loadOrdered(words[1 - self][0]);
    meet(self, 3 * round + 1);
    if (self == 0) {
      expect(seen[0][0] == round || seen[1][0] == round, "an ordered load passed an ordered store");
    }
    meet(self, 3 * round + 2);
  }
  return 0;
}

void checkOrder() {
  HANDLE const other = CreateThread(nullptr, 0, &runRounds, &faults, 0, nullptr);
  expect(other != nullptr, "no thread");
  if (other == nullptr) return;
  runRounds(nullptr);
  WaitForSingleObject(other, INFINITE);
  CloseHandle(other);
}

void checkBytes() {
  char text[8] = "abcdef";
  nCompiler::moveBytes(text + 1, text, 5);
  expect(nCompiler::textLength(text) == 6 && text[1] == 'a' && text[5] == 'e', "moveBytes");
  nCompiler::copyBytes(text, "xyz", 2);
  expect(text[0] == 'x' && text[1] == 'y' && text[2] == 'b', "copyBytes");
  nCompiler::clearBytes(text + 1, 2);
  expect(nCompiler::textLength(text) == 1 && text[3] == 'c', "clearBytes");
}

u32 lineOf(u32 line = COMPILER_CALLER_LINE) {
  return line;
}

COMPILER_STAYS_APART u64 timeBetween() {
  u64 const start = nCompiler::readTimeStampCounter();
  Sleep(1);
  nCompiler::keepFrame();
  return nCompiler::readTimeStampCounter() - start;
}

}  // namespace

int main() {
  checkWords();
  checkOrder();
  checkBytes();
  expect(lineOf() == __LINE__, "the line of the call");
  expect(timeBetween() > 0, "the counter stands");
  expect(!COMPILER_IS_CONSTANT(1), "a constant");
  expect(nCompiler::kIsTrivial<u32> && nCompiler::kIsTriviallyCopyable<tMood>, "a trait");
  printf("%d faults\n", faults);
  return faults == 0 ? 0 : 1;
}
