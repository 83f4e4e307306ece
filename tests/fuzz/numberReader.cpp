// The number reader against the model, with every length of the input, and numbers that the writer
// wrote, read again.

#include <cstring>

#include "config/options/numberText.h"
#include "filter/filterModel.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"
#include "vexk/number.h"

namespace {

using nOXDIAG100::readNumber;

constexpr size_t kLongestForEveryLength = 64;

void demandNumber(u32 seen, u32 wanted, std::string const& text) {
  demand(seen == wanted, "a number reads as the model says", [&] {
    return std::to_string(seen) + " instead of " + std::to_string(wanted) + " in " + readable(text);
  });
}

void readTerminated(std::string const& text) {
  tExactText exact(text);
  demandNumber(readNumber(exact.get()), modelNumber(text), text);
}

// Text of a length may hold NULs, and nothing terminates it.
void readCounted(std::string const& text) {
  tExactText exact(text, false);
  demandNumber(readNumber(exact.get(), text.size()), modelNumber(text), text);
}

std::string written(u64 value, u32 radix) {
  std::string buffer(kNumberTextSize, '#');
  u32 const length = vexNumberToText(value, radix, buffer.data());
  demand(length == std::strlen(buffer.c_str()), "the writer returns the number of digits",
         [&] { return std::to_string(length) + " for " + readable(buffer); });
  return buffer.c_str();
}

// In every form that the reader knows, with a prefix and without.
void writeAndRead(u64 value) {
  u32 const low = static_cast<u32>(value);
  demandNumber(readNumber(written(value, 10).c_str()), low, written(value, 10));
  demandNumber(readNumber(("0x" + written(value, 16)).c_str()), low, written(value, 16));
  for (u32 radix = kNumberRadixLeast; radix <= 10; ++radix) {
    std::string const text = std::to_string(radix) + "#" + written(value, radix);
    demandNumber(readNumber(text.c_str()), low, text);
  }
}

// The writer against the rule of its comment; the digits of the greater radices are letters.
void writeInEveryRadix(u64 value) {
  for (u32 radix = 0; radix <= kNumberRadixMost + 1; ++radix) {
    u32 const used = radix < kNumberRadixLeast || radix > kNumberRadixMost ? 10 : radix;
    std::string digits;
    for (u64 rest = value; rest != 0 || digits.empty(); rest /= used) {
      digits.insert(digits.begin(), "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[rest % used]);
    }
    demandEqual(written(value, radix), digits, "a number is written as the model says");
  }
}

}  // namespace

void fuzzInput(std::string const& input) {
  readTerminated(upToNul(input));
  readCounted(input);
  for (size_t length = 0; length < std::min(input.size(), kLongestForEveryLength); ++length) {
    readCounted(input.substr(0, length));
  }
  u64 value = 0;
  std::memcpy(&value, input.data(), std::min(input.size(), sizeof(value)));
  writeAndRead(value);
  writeInEveryRadix(value);
}
