// The serial destination under the trace stream.

#include "conformance/harness.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingBus.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

// A stream on a recorder; the module's serial destination, closed and at its first rate.
struct tSerialStream {
  tRecordedPort port;
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};
  tSerialTraceDestination* const serial = tSerialTraceDestination::getInstance();

  tSerialStream() {
    if (serial == nullptr) return;
    serial->setDivisor("115200");
    serial->open();
    serial->close();
    port->clear();
  }
  ~tSerialStream() {
    if (serial != nullptr) serial->close();
  }
  tSerialStream(tSerialStream const&) = delete;
  tSerialStream& operator=(tSerialStream const&) = delete;
};

// The bytes that were written to the transmitter, from the recorded events.
struct tSentText {
  char text[128] = {};

  explicit tSentText(char const* events) {
    u32 length = 0;
    for (; *events != 0; ++events) {
      if (!isTransmission(events) || length == sizeof(text) - 1) continue;
      text[length++] = static_cast<char>(readHexadecimal(events + 5));
    }
  }

 private:
  static bool isTransmission(char const* events) {
    for (char const* wanted = "w3F8="; *wanted != 0; ++wanted, ++events) {
      if (*events != *wanted) return false;
    }
    return true;
  }

  static int readHexadecimal(char const* digits) {
    int value = 0;
    for (; *digits != ' '; ++digits) {
      value = value * 16 + (*digits <= '9' ? *digits - '0' : *digits - 'A' + 10);
    }
    return value;
  }
};

}  // namespace

TEST(SerialStream, ThereIsOneInstance) {
  EXPECT_TRUE(tSerialTraceDestination::getInstance() != nullptr);
  EXPECT_TRUE(tSerialTraceDestination::getInstance() == tSerialTraceDestination::getInstance());
}

TEST(SerialStream, OptionInstallsTheInstanceWithItsRate) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600");
  EXPECT_TRUE(stream.trace.getDestination() == stream.serial);
  EXPECT_STREQ(stream.port.takeEvents(), "new(0) open(0,0,0) w3FB=80 w3F8=C w3FB=3 ");
  EXPECT_STREQ(stream.recorder.text(),
               "Switching trace destination to Serial port with baud rate 9600\n");
}

TEST(SerialStream, OptionWithoutARateKeepsTheOneChosenBefore) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.serial->setDivisor("4800");
  stream.trace.configure("--destination serial");
  EXPECT_STREQ(stream.port.takeEvents(), "new(0) open(0,0,0) w3FB=80 w3F8=18 w3FB=3 ");
}

TEST(SerialStream, RateIsReadUpToTheNextOption) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600 bogus 2400 --linenumber on");
  EXPECT_STREQ(stream.serial->getDescription(), "Serial port with baud rate 2400");
  EXPECT_EQ(stream.trace.lineNumberIsEnabled(), u32{1});
}

TEST(SerialStream, NameIsComparedExactly) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination Serial 9600");
  stream.trace.configure("--destination serial1 9600");
  EXPECT_TRUE(stream.trace.getDestination() == &stream.recorder);
  EXPECT_STREQ(stream.serial->getDescription(), "Serial port with baud rate 115200");
}

TEST(SerialStream, LineGoesOutWithCarriageReturn) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.setDestination(*stream.serial);
  stream.port->clear();
  stream.trace.put("line").endl();
  EXPECT_STREQ(tSentText(stream.port.takeEvents()).text, "line\n\r");
}

TEST(SerialStream, InquiryOfTheStreamTellsTheRate) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 19200");
  EXPECT_TRUE(tTraceState(stream.trace).has(" --destination serial 19200"));
}

TEST(SerialStream, ChoosingItAnewReopensItWithTheNewRate) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600");
  stream.port->modemStatus.set(0xB0);
  stream.trace.disable();
  stream.port->clear();
  stream.trace.configure("--destination serial 2400");
  EXPECT_STREQ(stream.port.takeEvents(),
               "release(7) delete new(0) open(0,0,0) w3FB=80 w3F8=30 w3FB=3 ");
}

TEST(SerialStream, PoppedConfigurationRestoresTheRate) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600");
  stream.trace.pushConfiguration();
  stream.trace.configure("--destination serial 2400");
  stream.trace.popConfiguration();
  EXPECT_TRUE(stream.trace.getDestination() == stream.serial);
  EXPECT_TRUE(tTraceState(stream.trace).has(" --destination serial 9600"));
}

TEST(SerialStream, LeavesTheFormerDestinationInPlaceWithoutABus) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.port->isBusMissing = true;
  stream.trace.configure("--destination serial 9600");
  EXPECT_TRUE(stream.trace.getDestination() == &stream.recorder);
  EXPECT_STREQ(stream.recorder.text(),
               "Switching trace destination to Serial port with baud rate 9600\n"
               "Trace destination couldn't be opened!\n"
               "Trace destination remains unchanged.\n");
  EXPECT_STREQ(stream.recorder.events(),
               "put measure inquire close configure(--destination|recording) open put put ");
}

TEST(SerialStream, LeavesTheFormerDestinationInPlaceWithoutAHandle) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.port->handle = 0;
  EXPECT_TRUE(stream.trace.setDestination(*stream.serial) == &stream.recorder);
  EXPECT_TRUE(stream.trace.getDestination() == &stream.recorder);
  EXPECT_EQ(stream.port->objects, u32{0});
}

TEST(SerialStream, IsRestoredWithItsRateWhenTheNextDestinationFails) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600");
  stream.serial->setDivisor("1200");
  stream.recorder.failingOpens = 1;
  stream.port->clear();
  EXPECT_TRUE(stream.trace.setDestination(stream.recorder) == stream.serial);
  EXPECT_TRUE(tTraceState(stream.trace).has(" --destination serial 9600"));
  stream.port->clear();
  stream.trace.put("here").endl();
  EXPECT_STREQ(tSentText(stream.port.takeEvents()).text, "here\n\r");
}

TEST(SerialStream, GivesWayToTheDebuggerWhenItDoesNotReopen) {
  tSerialStream stream;
  ASSERT_NE(stream.serial, nullptr);
  stream.trace.configure("--destination serial 9600");
  stream.port->isBusMissing = true;
  stream.trace.configure("--destination serial 2400");
  EXPECT_TRUE(stream.trace.getDestination() == &tVEXTraceDestination::getInstance());
}

TEST(SerialStream, DestinationThatGoesSendsTheModulesStreamToTheDebugger) {
  tRecordedPort port;
  tTrace& trace = tTrace::getInstance();
  {
    tSerialTraceDestination serial;
    trace.setDestination(serial);
    port->clear();
  }
  EXPECT_TRUE(trace.getDestination() == &tVEXTraceDestination::getInstance());
  EXPECT_EQ(port->objects, u32{0});
  EXPECT_STREQ(tSentText(port.takeEvents()).text,
               "Switching trace destination to VEX print to debugger\n\r");
}

TEST(SerialStream, DestinationThatGoesWhileNotCurrentLeavesTheModulesStreamAlone) {
  tRecordedPort port;
  tTrace& trace = tTrace::getInstance();
  iTraceDestination* const before = trace.getDestination();
  {
    tSerialTraceDestination serial;
    serial.open();
    port->clear();
  }
  EXPECT_TRUE(trace.getDestination() == before);
  EXPECT_STREQ(port.takeEvents(), "release(7) delete ");
}
