// The serial destination: what it sends, and how it waits.

#include "conformance/harness.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "support/recordingBus.h"
#include "vexk/timerTimebase.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tSerialTraceDestination;

// An open destination on a recorded port, with nothing recorded yet.
struct tOpenSerial {
  tRecordedPort port;
  tSerialTraceDestination serial;

  tOpenSerial() {
    serial.open();
    port->clear();
  }
};

bool isOneMillisecond(u64 counts) {
  u64 const elapsed = counts * tTimerTimebaseEfficient::getResolutionValue();
  u32 const unit = tTimerTimebaseEfficient::getResolutionTimeUnit();
  tTimeRatio const& ratio = tTimerUtility::conversionTable[kTimeMillisecond][unit];
  return elapsed >= ratio.numerator / ratio.denominator;
}

// Keeps how it is called byte by byte; the line becomes ready before byte `readyAt`.
class tByteCounter : public tSerialTraceDestination {
 public:
  using tSerialTraceDestination::put;

  iTraceDestination& put(char const* text, unsigned int length) override {
    if (length != 1) ++longCalls;
    if (++calls == readyAt) busRecord.modemStatus.set(0xB0);
    return tSerialTraceDestination::put(text, length);
  }

  u32 calls = 0;
  u32 longCalls = 0;
  u32 readyAt = 0;
};

}  // namespace

TEST(SerialOutput, CountedTextWaitsOnceForTheLineAndForTheTransmitterBeforeEachByte) {
  tOpenSerial open;
  open.serial.put("ab", 2);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=20 w3F8=61 r3FD=20 w3F8=62 ");
}

TEST(SerialOutput, CarriageReturnFollowsALineFeedAfterAnotherWait) {
  tOpenSerial open;
  open.serial.put("a\nb", 3);
  EXPECT_STREQ(open.port.takeEvents(),
               "r3FE=B0 r3FD=20 w3F8=61 r3FD=20 w3F8=A r3FD=20 w3F8=D r3FD=20 w3F8=62 ");
}

TEST(SerialOutput, CarriageReturnOfTheTextIsSentAsItIs) {
  tOpenSerial open;
  open.serial.put("\r\n", 2);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=20 w3F8=D r3FD=20 w3F8=A r3FD=20 w3F8=D ");
}

TEST(SerialOutput, CountedTextMayHoldNulBytes) {
  tOpenSerial open;
  open.serial.put("a\0b", 4);
  EXPECT_STREQ(open.port.takeEvents(),
               "r3FE=B0 r3FD=20 w3F8=61 r3FD=20 w3F8=0 r3FD=20 w3F8=62 r3FD=20 w3F8=0 ");
}

TEST(SerialOutput, BytesAbove127AreSentAsTheyAre) {
  tOpenSerial open;
  open.serial.put("\x80\xFF", 2);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=20 w3F8=80 r3FD=20 w3F8=FF ");
}

TEST(SerialOutput, CountedTextOfLengthZeroLooksAtTheLineOnce) {
  tOpenSerial open;
  open.serial.put("abc", 0);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 ");
  open.serial.put(nullptr, 0);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 ");
}

TEST(SerialOutput, EmptyTextLooksAtNothing) {
  tOpenSerial open;
  open.serial.put("");
  EXPECT_STREQ(open.port.takeEvents(), "");
}

TEST(SerialOutput, NullTextIsNoText) {
  tOpenSerial open;
  char const* const none = nullptr;
  open.serial.put(none);
  EXPECT_STREQ(open.port.takeEvents(), "");
  open.serial.put(none, 3);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 ");
}

TEST(SerialOutput, TerminatedTextWaitsForTheLineBeforeEachByte) {
  tOpenSerial open;
  open.serial.put("a\nb");
  EXPECT_STREQ(open.port.takeEvents(),
               "r3FE=B0 r3FD=20 w3F8=61 "
               "r3FE=B0 r3FD=20 w3F8=A r3FD=20 w3F8=D "
               "r3FE=B0 r3FD=20 w3F8=62 ");
}

TEST(SerialOutput, TerminatedTextGoesThroughTheOverriddenCountedPut) {
  tRecordedPort port;
  tByteCounter serial;
  serial.open();
  serial.put("abc");
  EXPECT_EQ(serial.calls, u32{3});
  EXPECT_EQ(serial.longCalls, u32{0});
}

TEST(SerialOutput, PutReturnsTheDestination) {
  tOpenSerial open;
  iTraceDestination& base = open.serial;
  EXPECT_TRUE(&base.put("a") == &base);
  EXPECT_TRUE(&base.put("a", 1) == &base);
  open.serial.close();
  EXPECT_TRUE(&base.put("a", 1) == &base);
}

TEST(SerialOutput, ClosedDestinationSendsNothing) {
  tOpenSerial open;
  open.serial.close();
  open.port->clear();
  open.serial.put("abc");
  open.serial.put("abc", 3);
  EXPECT_STREQ(open.port.takeEvents(), "");
}

TEST(SerialOutput, TransmitterIsPolledUntilItIsEmpty) {
  tOpenSerial open;
  open.port->lineStatus.set(0x00, 0x40, 0xDF, 0x20);
  open.serial.put("a", 1);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=0 r3FD=40 r3FD=DF r3FD=20 w3F8=61 ");
}

TEST(SerialOutput, TransmitterIsPolledBeforeTheCarriageReturnToo) {
  tOpenSerial open;
  open.port->lineStatus.set(0x60, 0x00, 0x00, 0x60);
  open.serial.put("\n", 1);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=60 w3F8=A r3FD=0 r3FD=0 r3FD=60 w3F8=D ");
}

TEST(SerialOutput, OtherBitsOfTheModemStatusDoNotMatter) {
  tOpenSerial open;
  open.port->modemStatus.set(0xFF);
  open.serial.put("a", 1);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=FF r3FD=20 w3F8=61 ");
}

TEST(SerialLine, IsPolledUntilEachOfItsLinesIsThere) {
  // Never more than the first look is too early, so that no time passes.
  u8 const missing[] = {0xA0, 0x90, 0x30, 0x80, 0x20, 0x10, 0x4F, 0x00};
  for (u8 const status : missing) {
    tOpenSerial open;
    open.port->modemStatus.set(status, 0xB0);
    open.serial.put("a", 1);
    EXPECT_EQ(open.port->modemStatus.reads, u32{2});
    EXPECT_EQ(open.port->writes, u32{4});  // three to open
  }
}

TEST(SerialLine, ThatComesInTheMiddleOfTheWaitSendsTheWholeText) {
  tOpenSerial open;
  open.port->modemStatus.set(0x00, 0xB0);
  open.serial.put("ab", 2);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=0 r3FE=B0 r3FD=20 w3F8=61 r3FD=20 w3F8=62 ");
}

TEST(SerialLine, ThatLacksOneSignalForeverGetsNothing) {
  u8 const missing[] = {0xA0, 0x90, 0x30, 0xEF, 0x00};
  for (u8 const status : missing) {
    tOpenSerial open;
    open.port->modemStatus.set(status);
    open.serial.put("a", 1);
    EXPECT_EQ(open.port->writes, u32{3});
    EXPECT_EQ(open.port->lineStatus.reads, u32{0});
    EXPECT_GE(open.port->modemStatus.reads, u32{2});
  }
}

TEST(SerialLine, IsGivenUpNotBeforeAMillisecond) {
  tOpenSerial open;
  open.port->modemStatus.set(0x00);
  u64 const start = tTimerTimebaseEfficient::getCounterValue();
  open.serial.put("abc", 3);
  EXPECT_TRUE(isOneMillisecond(tTimerTimebaseEfficient::getCounterValue() - start));
}

TEST(SerialLine, IsWaitedForByEveryPutAnew) {
  tOpenSerial open;
  open.port->modemStatus.set(0x00);
  open.serial.put("a", 1);
  u64 const start = tTimerTimebaseEfficient::getCounterValue();
  open.serial.put("b", 1);
  EXPECT_TRUE(isOneMillisecond(tTimerTimebaseEfficient::getCounterValue() - start));
  open.port->modemStatus.set(0xB0);
  open.port->clear();
  open.serial.put("c", 1);
  EXPECT_STREQ(open.port.takeEvents(), "r3FE=B0 r3FD=20 w3F8=63 ");
}

TEST(SerialLine, ThatComesBetweenTwoBytesOfATerminatedTextGetsTheSecond) {
  tRecordedPort port;
  tByteCounter serial;
  serial.open();
  port->modemStatus.set(0x00);
  serial.readyAt = 2;
  serial.put("ab");
  EXPECT_EQ(port->writes, u32{4});
  EXPECT_EQ(port->modemStatus.reads, u32{1});  // since it is ready
}
