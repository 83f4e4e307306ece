#include "slotbus/component/tExcerpt.h"
#include "slotbusSupport.h"

using namespace nSLOTBUS100;

namespace {

std::string const kFirst = "1 | 11 | A\\1 | first";
std::string const kSecond = "2 | 12 | A\\2 | second";
std::string const kBad = "nonsense";

}  // namespace

TEST(SlotbusText, GoodLinesGiveDevicesAndResultZero) {
  tReadRack const read(kFirst + "\n" + kSecond + "\n");
  EXPECT_EQ(read.result, 0U);
  EXPECT_EQ(read.rack.getCount(), 2U);
  EXPECT_EQ(read.reader.getFailureCount(), 0U);
  EXPECT_EQ(read.reader.getLineCount(), 2U);
}

TEST(SlotbusText, TheLastLineNeedsNoEnd) {
  tReadRack const read(kFirst + "\n" + kSecond);
  EXPECT_EQ(read.rack.getCount(), 2U);
  EXPECT_EQ(read.reader.getLineCount(), 2U);
}

TEST(SlotbusText, WindowsLineEndsAreLineEnds) {
  tReadRack const read(kFirst + "\r\n\r\n" + kSecond + "\r\n");
  EXPECT_EQ(read.result, 0U);
  EXPECT_EQ(read.rack.getCount(), 2U);
  EXPECT_EQ(textOf(read.rack.getDevice(0).description), "first");
  EXPECT_EQ(read.reader.getLineCount(), 3U);
}

TEST(SlotbusText, ACarriageReturnInsideALineIsABadCharacter) {
  tReadRack const read(kFirst + "\r" + kSecond + "\n");
  EXPECT_EQ(read.result, 1U);
  EXPECT_TRUE(read.hasTraced(describeStatusCode(kStatusBadCharacter)));
}

TEST(SlotbusText, AUtf8MarkAtTheStartIsSkipped) {
  tReadRack const read("\xEF\xBB\xBF" + kFirst + "\n");
  EXPECT_EQ(read.result, 0U);
  EXPECT_EQ(read.rack.getCount(), 1U);
}

TEST(SlotbusText, Utf16IsOneFailureWithAdvice) {
  for (char const* mark : {"\xFF\xFE", "\xFE\xFF"}) {
    tReadRack const read(std::string(mark) + std::string("1\0|\0\n\0x\0", 8));
    EXPECT_EQ(read.result, 1U);
    EXPECT_EQ(read.reader.getFailureCount(), 1U);
    EXPECT_TRUE(read.hasTraced("save it as plain text"));
  }
}

TEST(SlotbusText, ATextOfMoreThanOneMebibyteIsOneFailure) {
  EXPECT_EQ(tReadRack(std::string(kMaxRackTextLength, '#')).result, 0U);
  tReadRack const read(std::string(kMaxRackTextLength + 1, '#'));
  EXPECT_EQ(read.result, 1U);
  EXPECT_EQ(read.reader.getFailureCount(), 1U);
}

TEST(SlotbusText, AnEmptyTextIsAnEmptyRackAndAWarning) {
  for (char const* text : {"", "\n", "# nothing yet\n\n"}) {
    tReadRack const read(text);
    EXPECT_EQ(read.result, 0U);
    EXPECT_TRUE(read.hasTraced("the rack is empty"));
    EXPECT_TRUE(read.hasTraced("Error Code = 61001"));
  }
}

TEST(SlotbusText, ARackOfBadLinesOnlyIsEmptyAndBad) {
  tReadRack const read(kBad + "\n");
  EXPECT_EQ(read.result, 1U);
  EXPECT_TRUE(read.hasTraced("the rack is empty"));
}

TEST(SlotbusText, ABadLineIsTracedWithItsNumberReasonTextAndStatus) {
  tReadRack const read(kFirst + "\n#\n1O | 12 | A\\2 | second\n");
  EXPECT_EQ(read.result, 1U);
  EXPECT_TRUE(read.hasTraced("line 3: the slot is not a number: \"1O\"\n"));
  EXPECT_TRUE(read.hasTraced("tStatus2 Contents:\n\tError Code = -61007\n"));
  EXPECT_TRUE(read.hasTraced("\n\tComponent Name = slotbus\n"));
  EXPECT_TRUE(read.hasTraced("\n\tFile Name = examples/slotbus/component/tRackLine.cpp\n"));
  EXPECT_TRUE(read.hasTraced("\n\tStack Trace =\n\t\t0x"));
}

TEST(SlotbusText, LinesBehindABadOneAreRead) {
  tReadRack const read(kBad + "\n" + kFirst + "\n");
  EXPECT_EQ(read.rack.getCount(), 1U);
  EXPECT_EQ(read.rack.getDevice(0).lineNumber, 2U);
}

TEST(SlotbusText, ATakenSlotTellsWhoCameFirst) {
  tReadRack const read(kFirst + "\n1 | 99 | A\\2 | late\n");
  EXPECT_EQ(read.rack.getCount(), 1U);
  EXPECT_TRUE(read.hasTraced("line 2: the slot is taken by an earlier line"));
  EXPECT_TRUE(read.hasTraced("line 1 came first: \"first\"\n"));
}

TEST(SlotbusText, ATakenInstanceTellsWhoCameFirst) {
  tReadRack const read(kFirst + "\n2 | 11 | A\\2 | late\n");
  EXPECT_EQ(read.rack.getCount(), 1U);
  EXPECT_TRUE(read.hasTraced("line 2: the instance number is used by an earlier line"));
  EXPECT_TRUE(read.hasTraced("line 1 came first: \"first\"\n"));
}

TEST(SlotbusText, WhatCannotBePrintedIsShownAsPoints) {
  tReadRack const read(std::string("a\0b\x1B[2J\xFFz\n", 10));
  EXPECT_TRUE(read.hasTraced("\"a.b.[2J.z\"\n"));
  EXPECT_FALSE(read.hasTraced("\x1B"));
}

TEST(SlotbusText, AHugeLineIsShownByItsBeginning) {
  tReadRack const read(std::string(100000, 'x') + "\n" + kFirst + "\n");
  EXPECT_EQ(read.rack.getCount(), 1U);
  EXPECT_TRUE(read.hasTraced("line 1: the line is longer than 2000 bytes: \"" +
                             std::string(tExcerpt::kMaxLength, 'x') + "\"...\n"));
}

TEST(SlotbusText, FailuresBeyondTheLimitAreCountedOnly) {
  std::string text;
  for (u32 line = 0; line < tRackReader::kMaxTracedFailures + 3; ++line) text += kBad + "\n";
  tReadRack const read(text);
  EXPECT_EQ(read.reader.getFailureCount(), 53U);
  EXPECT_TRUE(read.hasTraced("line 50: "));
  EXPECT_FALSE(read.hasTraced("line 51: "));
  EXPECT_TRUE(read.hasTraced("3 more failures were counted but not shown\n"));
  EXPECT_TRUE(read.hasTraced("devices: 0, failures: 53, lines: 53\n"));
}

TEST(SlotbusText, TheSummaryCounts) {
  tReadRack const read("# two\n" + kFirst + "\n" + kSecond + "\n" + kBad);
  EXPECT_TRUE(read.hasTraced("devices: 2, failures: 1, lines: 4\n"));
}

TEST(SlotbusText, EachVerbosityShowsWhatItPromises) {
  std::string const text = kFirst + "\n" + kBad + "\n";
  struct tExpected {
    char const* filter;
    bool device, failure, progress, detail;
  };
  tExpected const expected[] = {{"verbosity>=150", false, false, false, false},
                                {"verbosity>=140", false, true, false, false},
                                {"verbosity>=120", true, true, false, false},
                                {"verbosity>=100", true, true, true, false},
                                {"verbosity>=60", true, true, true, true}};
  for (tExpected const& wanted : expected) {
    tReadRack const read(text, wanted.filter);
    EXPECT_TRUE(read.hasTraced("devices: 1, failures: 1, lines: 2\n")) << wanted.filter;
    EXPECT_EQ(read.hasTraced("slot 1: first (instance 11)\n"), wanted.device) << wanted.filter;
    EXPECT_EQ(read.hasTraced("line 2: "), wanted.failure) << wanted.filter;
    EXPECT_EQ(read.hasTraced("reading "), wanted.progress) << wanted.filter;
    EXPECT_EQ(read.hasTraced("hardware id A\\1\n"), wanted.detail) << wanted.filter;
    EXPECT_EQ(read.hasTraced("readLine; tStatus2 code=0 {\n"), wanted.detail) << wanted.filter;
    EXPECT_EQ(read.hasTraced("} tStatus2 code=-61005; readLine\n"), wanted.detail) << wanted.filter;
  }
}
