// The serial destination on the host's serial port.

#include <algorithm>
#include <chrono>
#include <thread>

#include "keptLines.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "startedModules.h"
#include "vexk/serialSupport.h"

namespace {

using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;

// Lets the line become ready at the nth look at the modem status.
struct tLateLine {
  u32 looks = 0;
  u32 readyAt;

  explicit tLateLine(u32 readyAt) : readyAt(readyAt) {
    vexkhost::setSerialModemLines(0);
    vexkhost::setSerialAccessHook(&see, this);
  }
  ~tLateLine() { vexkhost::setSerialAccessHook(nullptr, nullptr); }
  tLateLine(tLateLine const&) = delete;
  tLateLine& operator=(tLateLine const&) = delete;

  static void see(void* context, vexkhost::SerialAccess const& access) {
    tLateLine& line = *static_cast<tLateLine*>(context);
    if (access.port != kComModemStatus || ++line.looks != line.readyAt) return;
    vexkhost::setSerialModemLines(0xB0);
  }
};

// A destination for one test; what it is opened on must be connected before.
struct tOpenedSerial : tSerialTraceDestination {
  tOpenedSerial() { open(); }
};

}  // namespace

TEST(SerialOnHost, FileHasTheTextWithACarriageReturnBehindEachLineFeed) {
  tSerialFile const file;
  tOpenedSerial serial;
  serial.put("a\nb", 3);
  serial.put("line\n");
  EXPECT_EQ(file.content(), "a\n\rbline\n\r");
}

TEST(SerialOnHost, OpeningSendsNothingAndSetsDivisorAndFormat) {
  tSerialFile const file;
  tSerialTraceDestination serial;
  serial.setDivisor("9600");
  serial.open();
  EXPECT_EQ(file.content(), "");
  tOpenPorts const ports;
  EXPECT_EQ(ports.read(kComLineControl), 0x03);
  ports.write(kComLineControl, 0x83);
  EXPECT_EQ(ports.read(kComData), 12);
  EXPECT_EQ(ports.read(kComInterruptEnable), 0);
}

TEST(SerialOnHost, AbsentPortSwallowsEverything) {
  tOpenedSerial serial;
  serial.put("gone\n");
  serial.put("gone\n", 5);
  tSerialFile const file;
  EXPECT_EQ(file.content(), "");
}

TEST(SerialOnHost, LineThatComesInTheMiddleOfTheWaitLosesNothing) {
  tSerialFile const file;
  tOpenedSerial serial;
  tLateLine const line(2);
  serial.put("late", 4);
  EXPECT_EQ(file.content(), "late");
  EXPECT_EQ(line.looks, 2u);
}

TEST(SerialOnHost, LineThatNeverComesLosesTheTextAndReturns) {
  tSerialFile const file;
  tOpenedSerial serial;
  vexkhost::setSerialModemLines(0xA0);
  auto const start = std::chrono::steady_clock::now();
  serial.put("lost", 4);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1));
  EXPECT_EQ(file.content(), "");
  vexkhost::setSerialModemLines(0xB0);
  serial.put("kept", 4);
  EXPECT_EQ(file.content(), "kept");
}

TEST(SerialOnHost, TransmitterOfAFullTerminalIsPolledUntilSomebodyReads) {
  char name[64];
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  std::string const text(50'000, 'x');
  std::string got;
  std::thread reader([&] {
    FILE* const terminal = fopen(name, "rb");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));  // until the line is full
    for (int byte = 0; got.size() < text.size() && (byte = fgetc(terminal)) != EOF;) {
      got += static_cast<char>(byte);
    }
    fclose(terminal);
  });
  tOpenedSerial serial;
  serial.put(text.c_str(), static_cast<unsigned int>(text.size()));
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
  EXPECT_TRUE(vexkhost::drainSerialPort(60'000));
  vexkhost::disconnectSerialPort();
  reader.join();
  EXPECT_EQ(got, text);
}

TEST(SerialOnHost, TraceLinesGoToTheFileAndTheAnnouncementOfTheNextDestinationLast) {
  tSerialFile const file;
  tKeptLines kept;
  tOwnTrace trace(kept);
  trace.configure("--destination serial 9600");
  trace.put("one").endl();
  trace.put("two").endl();
  trace.setDestination(kept);
  trace.put("three").endl();
  EXPECT_EQ(file.content(), "one\n\rtwo\n\rSwitching trace destination to kept lines\n\r");
}

TEST(SerialOnHost, ThreadsThatPutAtOnceMixTheirBytesAndLoseNone) {
  tSerialFile const file;
  tOpenedSerial serial;
  auto const work = [&](char byte) {
    for (int index = 0; index < 500; ++index) serial.put(&byte, 1);
  };
  std::thread one([&] { work('1'); });
  std::thread two([&] { work('2'); });
  one.join();
  two.join();
  std::string const content = file.content();
  EXPECT_EQ(std::count(content.begin(), content.end(), '1'), 500);
  EXPECT_EQ(std::count(content.begin(), content.end(), '2'), 500);
}
