// oxdiag-view needs no more memory for a longer trace, however many names are in it.

#include <sys/resource.h>

#include "compiler/types.h"
#include "viewProgramTest.h"

namespace {

class ViewMemory : public tViewTest {
 protected:
  // The most that any program needed that this one started, in bytes.
  static u64 mostMemory() {
    rusage usage;
    EXPECT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
    return static_cast<u64>(usage.ru_maxrss) * 1024;
  }

  // The sanitizers keep freed memory for a while, unless they are asked not to. What is shown is
  // not read: it would be memory of this program, which the next one inherits.
  void show(std::string const& trace, std::string const& option) const {
    showFile(write("trace", trace), option);
  }

  void showFile(std::string const& file, std::string const& option) const {
    std::string const command = "ASAN_OPTIONS=$ASAN_OPTIONS:quarantine_size_mb=1 " +
                                std::string(kView) + " --rate 1GHz " + option + " " + file +
                                " >/dev/null";
    EXPECT_EQ(runProgram({"sh", "-c", command}).exitCode, 0);
  }

  // Of lines as long as the reader takes them; none whole in memory, which programs inherit, and a
  // sanitizer keeps.
  void writeLongNames() const {
    std::ofstream trace(pathOf("names"));
    std::string const rest(60'000, 'x');
    for (int number = 0; number < 200; ++number) {
      std::string const fields =
          "rack--17--a.cpp--0x1--" + std::to_string(5'000'000'000'000 + number);
      std::string prefix = lineOf(fields, "");
      prefix.pop_back();
      trace << prefix << number << rest << "; {\n" << prefix << "} " << number << rest << '\n';
    }
  }
};

// Blocks without ends, of ever new names and threads.
std::string traceOf(u32 first, u32 lines) {
  std::string trace;
  for (u32 line = first; line < first + lines; ++line) {
    std::string const number = std::to_string(line);
    char thread[16];
    std::snprintf(thread, sizeof(thread), "0x%X", line % 50'000);
    trace += lineOf("rack" + number + "--17--a.cpp--" + thread + "--" +
                        std::to_string(5'000'000'000'000 + line * 1000ll),
                    "block" + number + "; {");
  }
  return trace;
}

}  // namespace

TEST_F(ViewMemory, DoesNotGrowWithTheNamesOfBlocks) {
  constexpr u64 kMore = u64{6} << 20;
  for (char const* option : {"--summary", "--perfetto -"}) show(traceOf(0, 1), option);
  u64 const before = mostMemory();
  writeLongNames();
  for (char const* option : {"--summary", "--perfetto -"}) showFile(pathOf("names"), option);
  EXPECT_LT(mostMemory(), before + kMore);
}

TEST_F(ViewMemory, DoesNotGrowWithTheTrace) {
  constexpr u32 kPartLines = 11'000;  // more than names that are told apart
  constexpr u32 kTimes = 3;
  constexpr u64 kMore = u64{4} << 20;
  std::string const part = traceOf(0, kPartLines);
  std::string const whole = traceOf(0, kTimes * kPartLines);
  for (char const* option : {"--summary", "--perfetto -"}) show(part, option);
  u64 const before = mostMemory();
  for (char const* option : {"--summary", "--perfetto -"}) show(whole, option);
  EXPECT_LT(mostMemory(), before + kMore);
}
