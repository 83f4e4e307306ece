// What the debugger-print destination prints. It needs no module to be started, so none is.

#include "oxdiagk/tVEXTraceDestination.h"

#include <gtest/gtest.h>

#include "capturedPrint.h"

namespace {

using nOXDIAG100::tVEXTraceDestination;

tVEXTraceDestination& destination() {
  return tVEXTraceDestination::getInstance();
}

}  // namespace

TEST(DebuggerPrint, TextIsPrintedAsItIs) {
  tCapturedPrint const captured;
  destination().put("text\n");
  EXPECT_EQ(captured.prints, std::vector<std::string>{"text\n"});
}

TEST(DebuggerPrint, TextIsNeverAFormat) {
  tCapturedPrint const captured;
  destination().put("%s%n%d 100%");
  destination().put("%s%n%d 100%", 11);
  EXPECT_EQ(captured.text(), "%s%n%d 100%%s%n%d 100%");
}

TEST(DebuggerPrint, CountedTextIsCutAtItsCount) {
  tCapturedPrint const captured;
  destination().put("abcdef", 3);
  EXPECT_EQ(captured.text(), "abc");
}

TEST(DebuggerPrint, CountedTextEndsAtItsTerminator) {
  tCapturedPrint const captured;
  destination().put("ab", 10);
  destination().put("cd\0ef", 5);
  EXPECT_EQ(captured.text(), "abcd");
}

TEST(DebuggerPrint, EveryCountUpToTheWholeTextIsRight) {
  std::string const text = "The quick brown fox jumps over the lazy dog";
  for (size_t count = 0; count <= text.size() + 1; ++count) {
    tCapturedPrint const captured;
    destination().put(text.c_str(), static_cast<unsigned int>(count));
    EXPECT_EQ(captured.text(), text.substr(0, count));
  }
}

TEST(DebuggerPrint, CountOfZeroPrintsNothing) {
  tCapturedPrint const captured;
  destination().put("abc", 0);
  EXPECT_TRUE(captured.prints.empty());
}

TEST(DebuggerPrint, LargestCountPrintsTheText) {
  tCapturedPrint const captured;
  destination().put("abc", 0xFFFFFFFF);
  EXPECT_EQ(captured.text(), "abc");
}

TEST(DebuggerPrint, CountedTextNeedsNoTerminator) {
  char const text[] = {'a', 'b', 'c'};
  tCapturedPrint const captured;
  destination().put(text, 3);
  EXPECT_EQ(captured.text(), "abc");
}
