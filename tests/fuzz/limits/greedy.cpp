// A target that takes what its input names, more than the limits that the workshop sets for it: so
// its tests see that no limit is forgotten. It is no target of ./dev fuzz.

#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <vector>

#include "support/fuzzing.h"

namespace {

constexpr std::clock_t kLong = CLOCKS_PER_SEC / 5;  // of a processor; soon over on a busy machine
constexpr size_t kMebibyte = size_t{1} << 20;
constexpr size_t kLarge = 32 * kMebibyte;
constexpr size_t kBlocks = 400;

void spin() {
  std::clock_t const begin = std::clock();
  while (std::clock() - begin < kLong) {
  }
}

// The fuzzer's alarm wakes who sleeps.
[[noreturn]] void wait() {
  for (;;) pause();
}

void allocate() {
  void* volatile const block = std::malloc(kLarge);
  std::free(block);
}

// The fuzzer looks once in a second.
void fill() {
  std::vector<std::string> blocks;
  for (size_t count = 0; count < kBlocks; ++count) blocks.emplace_back(kMebibyte, 'x');
  wait();
}

}  // namespace

void fuzzInput(std::string const& input) {
  if (input == "processor") spin();
  if (input == "waiting") wait();
  if (input == "allocation") allocate();
  if (input == "memory") fill();
}
