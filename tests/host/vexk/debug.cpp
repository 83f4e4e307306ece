#include "vexk/debug.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "ntos/irql.h"
#include "ntoshost/executive.h"

namespace {

// What is printed while this lives.
class tFormattedPrint {
 public:
  tFormattedPrint() { ntoshost::setDebugPrintSink(&append, this); }
  ~tFormattedPrint() { ntoshost::setDebugPrintSink(nullptr, nullptr); }
  tFormattedPrint(tFormattedPrint const&) = delete;
  tFormattedPrint& operator=(tFormattedPrint const&) = delete;

  std::string text;
  u32 calls = 0;

 private:
  static void append(void* context, char const* text, size_t length) {
    auto& print = *static_cast<tFormattedPrint*>(context);
    print.text.append(text, length);
    ++print.calls;
  }
};

volatile std::sig_atomic_t trapsSeen = 0;

}  // namespace

TEST(VexkHostDebug, PrintsItsTextUnchanged) {
  tFormattedPrint const print;
  ssprintf("hello\n");
  EXPECT_EQ("hello\n", print.text);
  EXPECT_EQ(1u, print.calls);
}

TEST(VexkHostDebug, AddsNoNewline) {
  tFormattedPrint const print;
  ssprintf("one ");
  ssprintf("two");
  EXPECT_EQ("one two", print.text);
}

TEST(VexkHostDebug, FormatsItsArguments) {
  tFormattedPrint const print;
  ssprintf("%s %d %u 0x%X %c %%", "text", -5, 7u, 255u, 'x');
  EXPECT_EQ("text -5 7 0xFF x %", print.text);
}

TEST(VexkHostDebug, PassesManyArgumentsOn) {
  tFormattedPrint const print;
  ssprintf("%d %d %d %d %d %d %d %d", 1, 2, 3, 4, 5, 6, 7, 8);
  EXPECT_EQ("1 2 3 4 5 6 7 8", print.text);
}

TEST(VexkHostDebug, ANullFormatPrintsNothing) {
  tFormattedPrint const print;
  char const* volatile none = nullptr;
  ssprintf(none, 1);
  EXPECT_EQ(0u, print.calls);
}

TEST(VexkHostDebug, PrintsAtAnyIrql) {
  tFormattedPrint const print;
  KIRQL previous;
  KeRaiseIrql(HIGH_LEVEL, &previous);
  ssprintf("high");
  KeLowerIrql(previous);
  EXPECT_EQ("high", print.text);
}

TEST(VexkHostDebug, HaltIsABreakpointTrap) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(ssHalt(), testing::KilledBySignal(SIGTRAP), "");
}

TEST(VexkHostDebug, HaltReturnsWhenTheTrapIsHandled) {
  auto* const before = std::signal(SIGTRAP, [](int) { trapsSeen = trapsSeen + 1; });
  ssHalt();
  EXPECT_EQ(1, trapsSeen);
  ssHalt();
  EXPECT_EQ(2, trapsSeen);
  std::signal(SIGTRAP, before);
}
