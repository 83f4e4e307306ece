// The formatter against the C library's snprintf, over generated formats: all that both know must
// come out the same, with buffers of every size.
//
// Where the two differ on purpose, and what is done about it here:
//
//   l, L with numbers        change nothing; snprintf is not given them
//   + and blank with u       show the sign character; never generated together
//   null text                is empty, not "(null)"; never generated
//   l with s                 is UTF-16, of which the low bytes are taken; never generated
//   c, p                     write nothing; never generated
//   e E f F g G              are marked and take no argument; never generated
//   a A n S C m              are invalid; never generated
//   hh ll j z t q            are two letters, or invalid; never generated
//   n$ and '                 are invalid; never generated
//   a number in front of     is invalid, as is everything out of order; never generated
//     a flag, "%.-5d"
//   a format that ends       is no failure; EndOfFormatWithinAConversion
//     within a conversion
//   text that does not fit   returns -1, not the length that it would have had
//   width and precision      above INT_MAX count as very large, not as a failure; never generated

#include <gtest/gtest.h>
#include <stdarg.h>

#include <cstdio>
#include <random>
#include <string>

#include "oxdiagk/tTrace.h"
#include "rounds.h"
#include "trace/tTraceFormatter.h"

namespace {

using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceFormatter;

constexpr int kFormatCount = roundsOf(2'400'000);
constexpr size_t kMostConversions = 5;
constexpr size_t kMostArguments = kMostConversions * 3;  // width, precision, value
constexpr char kUntouched = '\x5A';

// One format for each side, and arguments for both. Every argument has eight bytes of its own,
// where numbers are the low four, so a table of them serves all conversions.
struct tCase {
  std::string ours;
  std::string theirs;
  u64 arguments[kMostArguments] = {};
  size_t argumentCount = 0;

  void add(std::string const& text) {
    ours += text;
    theirs += text;
  }
  void addArgument(u64 argument) { arguments[argumentCount++] = argument; }
};

i32 formatOurs(char* buffer, size_t size, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  i32 const length = tTraceFormatter::format(buffer, static_cast<u32>(size), format, arguments);
  va_end(arguments);
  return length;
}

class tCaseMaker {
 public:
  explicit tCaseMaker(u32 seed) : random(seed) {}

  u32 pick(u32 count) { return static_cast<u32>(random() % count); }

  tCase make() {
    tCase result;
    size_t const conversions = 1 + pick(kMostConversions);
    for (size_t index = 0; index < conversions; ++index) {
      result.add(choose(kPlainTexts));
      addConversion(result);
    }
    result.add(choose(kPlainTexts));
    return result;
  }

  size_t makeSize() {
    static constexpr size_t kSizes[] = {1, 2, 7, 8, 20, 60, 255, 256, 1023, 1024};
    return pick(2) == 0 ? tTrace::kMaxTraceLine : choose(kSizes);
  }

 private:
  static constexpr char const* kPlainTexts[] = {"", "", "|", "a", " slot ", "\n", "0x", "\xFF\x80"};
  static constexpr char const* kTexts[] = {
      "", "a", "abc", "%d%s%%", "text of some length", "two\nlines", "\x80\xFE\xFF"};
  static constexpr u32 kValues[] = {
      0,     1,          7,          8,          9,     10,         15,
      16,    99,         100,        32767,      32768, 65535,      65536,
      65537, 0x7FFFFFFF, 0x80000000, 0x80000001, 255,   0xFFFF8000, 0xFFFFFFFF};

  template <class tItem, size_t count>
  tItem choose(tItem const (&items)[count]) {
    return items[pick(count)];
  }

  void addConversion(tCase& result) {
    char const letter = choose("diuoxXs%diuoxX");
    if (letter == 0) return;
    result.add("%");
    addFlags(result, letter);
    addWidth(result);
    if (pick(2) == 0) addPrecision(result);
    addLength(result, letter);
    result.add(std::string(1, letter));
    addValue(result, letter);
  }

  void addFlags(tCase& result, char letter) {
    for (u32 count = pick(4); count != 0; --count) {
      char const flag = choose("-+ #0-");
      bool const isSign = flag == '+' || flag == ' ';
      if (flag != 0 && !(isSign && letter == 'u')) result.add(std::string(1, flag));
    }
  }

  u32 makeCount() { return pick(40) == 0 ? 900 + pick(300) : pick(14); }

  void addWidth(tCase& result) {
    if (pick(3) == 0) return;
    u32 const width = makeCount();
    if (pick(3) == 0) {
      result.add("*");
      result.addArgument(makeSlot(pick(3) == 0 ? 0 - width : width));
    } else if (width != 0) {
      result.add(std::to_string(width));
    }
  }

  void addPrecision(tCase& result) {
    result.add(".");
    u32 const precision = makeCount();
    u32 const form = pick(4);
    if (form == 0) return;
    if (form != 1) {
      result.add(std::to_string(precision));
    } else {
      result.add("*");
      result.addArgument(makeSlot(pick(3) == 0 ? 0 - precision : precision));
    }
  }

  void addLength(tCase& result, char letter) {
    switch (letter == 's' ? 0 : pick(6)) {
      case 1:
        return result.add("h");
      case 2:
        result.ours += "l";
        return;
      case 3:
        result.ours += "L";
        return;
      default:
        return;
    }
  }

  void addValue(tCase& result, char letter) {
    if (letter == '%') return;
    if (letter == 's') {
      result.addArgument(reinterpret_cast<u64>(choose(kTexts)));
    } else {
      result.addArgument(makeSlot(pick(3) == 0 ? static_cast<u32>(random()) : choose(kValues)));
    }
  }

  // What stands in the high half of a number's eight bytes means nothing to either side.
  u64 makeSlot(u32 value) { return static_cast<u64>(random()) << 32 | value; }

  std::mt19937 random;
};

template <class tFormat>
auto callWith(tCase const& test, tFormat format) {
  u64 const* const a = test.arguments;
  return format(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12],
                a[13], a[14]);
}

// What a buffer of `size` holds, up to and with the terminator, and the byte behind the buffer.
template <class tFormat>
std::string formatBytes(size_t size, tFormat format) {
  std::string bytes(tTrace::kMaxTraceLine + 1, kUntouched);
  format(bytes.data(), size);
  bytes.resize(size + 1);
  size_t const end = bytes.find('\0');
  if (end != std::string::npos) bytes.erase(end + 1, size - end - 1);
  return bytes;
}

// Returns whether the text fit.
bool compare(tCase const& test, size_t size) {
  i32 ourLength = 0;
  int theirLength = 0;
  std::string const ours = formatBytes(size, [&](char* buffer, size_t room) {
    ourLength = callWith(test, [&](auto... arguments) {
      return formatOurs(buffer, room, test.ours.c_str(), arguments...);
    });
  });
  std::string const theirs = formatBytes(size, [&](char* buffer, size_t room) {
    theirLength = callWith(test, [&](auto... arguments) {
      return std::snprintf(buffer, room, test.theirs.c_str(), arguments...);
    });
  });
  bool const fits = theirLength >= 0 && static_cast<size_t>(theirLength) < size;
  EXPECT_GE(theirLength, 0) << test.theirs;
  EXPECT_EQ(ours, theirs) << test.ours << ", " << size << " bytes";
  EXPECT_EQ(ourLength, fits ? theirLength : -1) << test.ours << ", " << size << " bytes";
  return fits;
}

}  // namespace

TEST(PutfAgainstPrintf, GeneratedFormatsGiveTheSameText) {
  tCaseMaker maker(24);
  int whole = 0;
  for (int index = 0; index < kFormatCount; ++index) {
    tCase const test = maker.make();
    whole += compare(test, maker.makeSize()) ? 1 : 0;
    ASSERT_FALSE(HasFailure()) << "format " << index;
  }
  // Both outcomes came up often.
  EXPECT_GT(whole, kFormatCount / 3);
  EXPECT_LT(whole, kFormatCount - kFormatCount / 10);
}

// What both must agree on because formats like these are written by hand: each conversion with
// every set of flags, some widths and precisions, and values at the limits.
TEST(PutfAgainstPrintf, EverySetOfFlagsGivesTheSameText) {
  static constexpr char kFlags[] = "-+ #0";
  static constexpr char const* kWidths[] = {"", "1", "5", "12"};
  static constexpr char const* kPrecisions[] = {"", ".", ".0", ".1", ".3", ".8"};
  static constexpr u32 kValues[] = {0, 1, 8, 255, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  for (char const letter : {'d', 'i', 'u', 'o', 'x', 'X'}) {
    for (u32 set = 0; set < 1u << 5; ++set) {
      std::string flags;
      for (u32 flag = 0; flag < 5; ++flag) {
        bool const isSign = kFlags[flag] == '+' || kFlags[flag] == ' ';
        if ((set >> flag & 1) != 0 && !(isSign && letter == 'u')) flags += kFlags[flag];
      }
      for (char const* width : kWidths) {
        for (char const* precision : kPrecisions) {
          for (u32 const value : kValues) {
            tCase test;
            test.add("%" + flags + width + precision + letter + "|");
            test.addArgument(value);
            compare(test, tTrace::kMaxTraceLine);
          }
        }
      }
    }
  }
}

// snprintf fails there, and its buffer holds what stands in front.
TEST(PutfAgainstPrintf, EndOfFormatWithinAConversion) {
  for (char const* format : {"ab%", "ab%5", "ab%-", "ab%.", "ab%.3", "ab%l", "ab%#05.2h"}) {
    char ours[16];
    char theirs[16];
    EXPECT_EQ(formatOurs(ours, sizeof(ours), format), 2) << format;
    EXPECT_EQ(std::snprintf(theirs, sizeof(theirs), format, 0), -1) << format;
    EXPECT_STREQ(ours, theirs);
  }
}
