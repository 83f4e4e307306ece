// Where the debugger print goes, and how much of it.

#include "ntoshost/debugPrint.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "ntos/debug.h"
#include "ntos/irql.h"

namespace {

void collect(void* context, char const* text, size_t length) {
  static_cast<std::vector<std::string>*>(context)->emplace_back(text, length);
}

class DebugPrint : public testing::Test {
 protected:
  DebugPrint() { ntoshost::setDebugPrintSink(collect, &m_prints); }
  ~DebugPrint() override { ntoshost::setDebugPrintSink(nullptr, nullptr); }

  std::vector<std::string> m_prints;
};

u32 printListAt(u32 level, char const* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  u32 const status = vDbgPrintEx(DPFLTR_IHVDRIVER_ID, level, format, arguments);
  va_end(arguments);
  return status;
}

template <class... tArguments>
u32 printList(char const* format, tArguments... arguments) {
  return printListAt(DPFLTR_ERROR_LEVEL, format, arguments...);
}

TEST_F(DebugPrint, EachCallReachesTheSinkAsOnePiece) {
  DbgPrint("slot %d\n", 5);
  DbgPrint("done");
  EXPECT_EQ(m_prints, (std::vector<std::string>{"slot 5\n", "done"}));
}

TEST_F(DebugPrint, ItSucceeds) {
  EXPECT_EQ(DbgPrint("x"), 0u);
  EXPECT_EQ(printList("x"), 0u);
}

TEST_F(DebugPrint, AListOfArgumentsPrintsTheSame) {
  printList("%s %c%c", "slot", 'a', 'b');
  EXPECT_EQ(m_prints, (std::vector<std::string>{"slot ab"}));
}

TEST_F(DebugPrint, OfAListNothingButErrorsIsShown) {
  for (u32 level : {DPFLTR_WARNING_LEVEL, DPFLTR_TRACE_LEVEL, DPFLTR_INFO_LEVEL}) {
    EXPECT_EQ(printListAt(level, "level %u", level), 0u);
  }
  EXPECT_TRUE(m_prints.empty());
}

TEST_F(DebugPrint, AnEmptyTextIsAPrintToo) {
  DbgPrint("%s", "");
  EXPECT_EQ(m_prints, (std::vector<std::string>{""}));
}

TEST_F(DebugPrint, ATextAtTheLimitIsWholeAndAboveItIsCutWithANewline) {
  std::string const text(kDebugPrintLimit + 1, 'x');
  for (u32 length = kDebugPrintLimit - 1; length <= kDebugPrintLimit; ++length) {
    DbgPrint("%.*s", static_cast<i32>(length), text.c_str());
    EXPECT_EQ(m_prints.back(), text.substr(0, length));
  }
  DbgPrint("%s", text.c_str());
  EXPECT_EQ(m_prints.back(), text.substr(0, kDebugPrintLimit - 1) + "\n");
}

TEST_F(DebugPrint, ItIsAllowedAtEveryLevel) {
  KIRQL previous;
  KeRaiseIrql(HIGH_LEVEL, &previous);
  DbgPrint("%u %s", 15, "high");
  KeLowerIrql(previous);
  EXPECT_EQ(m_prints.back(), "15 high");
}

TEST_F(DebugPrint, WithoutASinkItGoesToStandardError) {
  ntoshost::setDebugPrintSink(nullptr, nullptr);
  testing::internal::CaptureStderr();
  DbgPrint("slot %d\n", 5);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "slot 5\n");
  EXPECT_TRUE(m_prints.empty());
}

TEST_F(DebugPrint, PrintsOfManyThreadsDoNotMix) {
  constexpr size_t kThreads = 4;
  constexpr size_t kPrints = 500;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (u32 i = 0; i < kThreads; ++i) {
    threads.emplace_back([i] {
      for (size_t print = 0; print < kPrints; ++print) DbgPrint("%u%u%u%u", i, i, i, i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(m_prints.size(), kThreads * kPrints);
  for (std::string const& print : m_prints) EXPECT_EQ(print, std::string(4, print[0]));
}

void printAbovePassive(char const* format, void const* argument) {
  KIRQL previous;
  KeRaiseIrql(APC_LEVEL, &previous);
  DbgPrint(format, argument);
}

TEST(DebugPrintDeathTest, WideTextIsForPassiveLevel) {
  EXPECT_DEATH(printAbovePassive("%ws", L"x"),
               "ntos: A format with UTF-16 text was called at IRQL 1 \\(APC_LEVEL\\); it may be "
               "called up to IRQL 0 \\(PASSIVE_LEVEL\\)\\.\n$");
}

TEST(DebugPrintDeathTest, WhatTheKernelCannotFormatIsRefused) {
  EXPECT_DEATH(DbgPrint("%f", 1.0),
               "ntos: DbgPrint was given a format with %f, which the kernel does not have\\.\n$");
  i32 count = 0;
  EXPECT_DEATH(DbgPrint("%n", &count), "DbgPrint was given a format with %n");
  EXPECT_DEATH(printList("%zu", size_t{1}), "vDbgPrintEx was given a format with %z");
  EXPECT_DEATH(DbgPrint("100%"), "DbgPrint was given a format that ends within a conversion\\.");
  EXPECT_DEATH(DbgPrint("%-8.2l"), "DbgPrint was given a format that ends within a conversion\\.");
}

}  // namespace
