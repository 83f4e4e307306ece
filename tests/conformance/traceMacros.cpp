#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "support/macroStream.h"

namespace {

struct tMacroStream : tPrefixedStream {
  tMacroStream() {
    trace.setMinPrefixWidth(0);
    stream = &trace;
    streamUses = 0;
  }

  char const* text() const { return record.text(); }
};

u32 countUp(u32& counter) {
  return ++counter;
}

void traceBlock(unsigned int verbosity) {
  OXDIAG_BLOCK(verbosity);
  OXDIAG_TRACE(100, put("inside"));
}

void traceObject(void* object) {
  OXDIAG_BLOCK_OBJECT(100, object);
}

void traceStatus(i32& status) {
  OXDIAG_BLOCK_STATUS(100, nullptr, &status);
  status = -5;
}

void traceStatusObject(void* object, nOXDIAG100::tStatus2& status) {
  OXDIAG_BLOCK_STATUS(100, object, &status);
  status.setCode(-5);
}

void traceTwoBlocks() {
  OXDIAG_BLOCK(100);
  OXDIAG_BLOCK(100);
}

struct tPort {
  void open() { OXDIAG_BLOCK(100); }
  void look() const { OXDIAG_BLOCK_OBJECT(100, this); }
  void wait() const volatile {
    i32 status = 0;
    OXDIAG_BLOCK_STATUS(100, this, &status);
  }
};

// What a line of the caller asks for, with a line of its own.
u32 readReply(unsigned int verbosity) {
  OXDIAG_TRACE(verbosity, put("reading"));
  return 7;
}

// Names that the macros might use for themselves.
void traceShadowed(unsigned int trace, unsigned int line, unsigned int verbosity, i32 status) {
  OXDIAG_BLOCK_STATUS(verbosity, nullptr, &status);
  OXDIAG_TRACE(verbosity, put(trace, 10).put(line, 10));
}

}  // namespace

TEST(TraceMacros, ATraceIsOneWholeLine) {
  tMacroStream macros;
  macros.showFieldsInFull();
  macros.trace.enableComponentVersion();
  macros.trace.disableLineNumber();
  macros.trace.enableVerbosity();
  OXDIAG_TRACE(110, put("slot ").put(7, 10).put(true));
  EXPECT_STREQ("[rack--1.0.0f7--port.cpp--110] slot 7true(1)\n", macros.text());
}

TEST(TraceMacros, ATraceHasTheLineItStandsIn) {
  tMacroStream macros;
  macros.disableAllFields();
  macros.showFieldsInFull();
  macros.trace.enableLineNumber();
  // clang-format off
  OXDIAG_TRACE(100, put("x")); u32 const line = __LINE__;
  // clang-format on
  macros.trace.put("[").put(line, 10).put("] x").endl();
  EXPECT_EQ(u32{2}, macros.record.pieceCount());
  EXPECT_EQ(macros.record.pieceLength(0), macros.record.pieceLength(1));
  EXPECT_TRUE(macros.record.pieceIs(1, macros.text() + macros.record.pieceLength(0)));
  EXPECT_TRUE(macros.record.pieceIs(0, macros.text() + macros.record.pieceLength(0)));
}

TEST(TraceMacros, TheFileIsPassedWithItsPath) {
  tMacroStream macros;
  macros.disableAllFields();
  macros.showFieldsInFull();
  macros.trace.enableFileName();
  macros.trace.enableFilePath();
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[source/port.cpp] x\n", macros.text());
}

TEST(TraceMacros, AShownTraceEvaluatesItsArgumentsOnce) {
  tMacroStream macros;
  u32 verbosities = 99;
  u32 values = 0;
  OXDIAG_TRACE(countUp(verbosities), put(countUp(values), 10));
  EXPECT_EQ(u32{100}, verbosities);
  EXPECT_EQ(u32{1}, values);
  EXPECT_EQ(u32{1}, streamUses);
  EXPECT_STREQ("1\n", macros.text());
}

TEST(TraceMacros, AHiddenTraceDoesNotEvaluateItsText) {
  tMacroStream macros;
  u32 verbosities = 0;
  u32 values = 0;
  OXDIAG_TRACE(countUp(verbosities), put(countUp(values), 10));
  EXPECT_EQ(u32{1}, verbosities);
  EXPECT_EQ(u32{0}, values);
  EXPECT_EQ(u32{1}, streamUses);
  EXPECT_STREQ("", macros.text());
}

TEST(TraceMacros, ATraceOnADisabledStreamDoesNotEvaluateItsText) {
  tMacroStream macros;
  macros.trace.disable();
  u32 values = 0;
  OXDIAG_TRACE(100, put(countUp(values), 10));
  EXPECT_EQ(u32{0}, values);
}

TEST(TraceMacros, AHiddenTraceEndsItsLine) {
  tMacroStream macros;
  OXDIAG_TRACE(99, put("hidden"));
  EXPECT_TRUE(macros.trace.isLineShown());
  macros.trace.put("shown").endl();
  EXPECT_STREQ("shown\n", macros.text());
}

TEST(TraceMacros, ATraceIsOneStatement) {
  tMacroStream macros;
  for (u32 count = 0; count < 3; ++count)
    if (count == 1)
      OXDIAG_TRACE(100, put("one"));
    else
      OXDIAG_TRACE(100, put("other"));
  EXPECT_STREQ("other\none\nother\n", macros.text());
}

TEST(TraceMacros, ABlockIsNamedAfterItsFunction) {
  tMacroStream macros;
  traceBlock(100);
  EXPECT_STREQ("traceBlock; {\n  inside\n} traceBlock\n", macros.text());
}

TEST(TraceMacros, ABlockInAMemberFunctionIsNamedAfterIt) {
  tMacroStream macros;
  tPort{}.open();
  EXPECT_STREQ("open; {\n} open\n", macros.text());
}

TEST(TraceMacros, ABlockMayShowTheObjectOfAConstMemberFunction) {
  tMacroStream macros;
  tPort const& port = *reinterpret_cast<tPort const*>(0xABC);
  port.look();
  port.wait();
  EXPECT_STREQ(
      "look; this=0xABC; {\n} look\n"
      "wait; this=0xABC; tStatus=0 {\n} tStatus=0; wait\n",
      macros.text());
}

TEST(TraceMacros, ALineWithinALineEndsWhatStandsBeforeIt) {
  tMacroStream macros;
  macros.showFieldsInFull();
  OXDIAG_TRACE(100, put("reply ").put(readReply(100), 10).put(" bytes"));
  EXPECT_EQ(u32{2}, macros.record.pieceCount());
  EXPECT_TRUE(macros.record.pieceIs(1, "7 bytes\n"));
}

TEST(TraceMacros, ALineWithinAHiddenLineIsNotEvenCalledFor) {
  tMacroStream macros;
  OXDIAG_TRACE(99, put("reply ").put(readReply(100), 10));
  EXPECT_STREQ("", macros.text());
}

TEST(TraceMacros, AValueThatIsAskedForBeforehandLeavesBothLinesWhole) {
  tMacroStream macros;
  u32 const length = readReply(100);
  OXDIAG_TRACE(100, put("reply ").put(length, 10).put(" bytes"));
  EXPECT_STREQ("reading\nreply 7 bytes\n", macros.text());
}

TEST(TraceMacros, AHiddenBlockStillNests) {
  tMacroStream macros;
  traceBlock(99);
  EXPECT_STREQ("  inside\n", macros.text());
}

TEST(TraceMacros, ABlockHasThePrefixOfTheComponent) {
  tMacroStream macros;
  macros.showFieldsInFull();
  macros.trace.enableComponentVersion();
  macros.trace.disableLineNumber();
  macros.trace.enableVerbosity();
  traceObject(nullptr);
  EXPECT_STREQ(
      "[rack--1.0.0f7--port.cpp--100] traceObject; {\n"
      "[rack--1.0.0f7--port.cpp--100] } traceObject\n",
      macros.text());
}

TEST(TraceMacros, ABlockMayShowAnObject) {
  tMacroStream macros;
  traceObject(reinterpret_cast<void*>(0xABC));
  EXPECT_STREQ("traceObject; this=0xABC; {\n} traceObject\n", macros.text());
}

TEST(TraceMacros, ABlockMayShowAStatus) {
  tMacroStream macros;
  i32 status = 0;
  traceStatus(status);
  EXPECT_STREQ("traceStatus; tStatus=0 {\n} tStatus=-5; traceStatus\n", macros.text());
}

TEST(TraceMacros, ABlockMayShowAnObjectAndAStatusObject) {
  tMacroStream macros;
  nOXDIAG100::tStatus2 status;
  traceStatusObject(reinterpret_cast<void*>(0xABC), status);
  EXPECT_STREQ(
      "traceStatusObject; this=0xABC; tStatus2 code=0 {\n"
      "} tStatus2 code=-5; traceStatusObject\n",
      macros.text());
}

TEST(TraceMacros, OneScopeMayHaveTwoBlocks) {
  tMacroStream macros;
  traceTwoBlocks();
  EXPECT_STREQ("traceTwoBlocks; {\n  traceTwoBlocks; {\n  } traceTwoBlocks\n} traceTwoBlocks\n",
               macros.text());
}

TEST(TraceMacros, NamesOfTheCallerAreNotShadowed) {
  tMacroStream macros;
  traceShadowed(1, 2, 100, 3);
  EXPECT_STREQ("traceShadowed; tStatus=3 {\n  12\n} tStatus=3; traceShadowed\n", macros.text());
}
