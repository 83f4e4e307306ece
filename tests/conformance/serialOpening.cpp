// The serial destination: opening and closing, and the rate it is opened with.

#include "conformance/harness.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "support/recordingBus.h"

namespace {

using nOXDIAG100::tSerialTraceDestination;

constexpr char kOpening[] = "new(0) open(0,0,0) w3FB=80 w3F8=1 w3FB=3 ";
constexpr char kClosing[] = "release(7) delete ";

struct tRate {
  char const* word;
  char const* accesses;
  char const* description;
};

constexpr tRate kRates[] = {
    {"115200", "w3FB=80 w3F8=1 w3FB=3 ", "Serial port with baud rate 115200"},
    {"57600", "w3FB=80 w3F8=2 w3FB=3 ", "Serial port with baud rate 57600"},
    {"38400", "w3FB=80 w3F8=3 w3FB=3 ", "Serial port with baud rate 38400"},
    {"19200", "w3FB=80 w3F8=6 w3FB=3 ", "Serial port with baud rate 19200"},
    {"9600", "w3FB=80 w3F8=C w3FB=3 ", "Serial port with baud rate 9600"},
    {"4800", "w3FB=80 w3F8=18 w3FB=3 ", "Serial port with baud rate 4800"},
    {"2400", "w3FB=80 w3F8=30 w3FB=3 ", "Serial port with baud rate 2400"},
    {"2000", "w3FB=80 w3F8=3A w3FB=3 ", "Serial port with baud rate 1986"},
    {"1800", "w3FB=80 w3F8=40 w3FB=3 ", "Serial port with baud rate 1800"},
    {"1200", "w3FB=80 w3F8=60 w3FB=3 ", "Serial port with baud rate 1200"},
};

// Words as configure takes them; a null one stays null.
template <class... Words>
void configure(tSerialTraceDestination& serial, Words... words) {
  char* list[] = {const_cast<char*>(words)...};
  serial.configure(static_cast<int>(sizeof...(words)), list);
}

void reopen(tSerialTraceDestination& serial, tRecordedPort& port) {
  serial.close();
  port->clear();
  serial.open();
}

bool isDescribed(tSerialTraceDestination const& serial, char const* wanted) {
  return __builtin_strcmp(serial.getDescription(), wanted) == 0;
}

}  // namespace

TEST(SerialOpening, NewDestinationTouchesNothing) {
  tRecordedPort port;
  { tSerialTraceDestination const serial; }
  EXPECT_STREQ(port.takeEvents(), "");
}

TEST(SerialOpening, TakesTheSystemBusAndProgramsThePortInOrder) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  EXPECT_EQ(serial.open(), u32{1});
  EXPECT_STREQ(port.takeEvents(), kOpening);
}

TEST(SerialOpening, ClosingReleasesTheHandleAndDestroysTheBus) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  port->clear();
  serial.close();
  EXPECT_STREQ(port.takeEvents(), kClosing);
  EXPECT_EQ(port->objects, u32{0});
}

TEST(SerialOpening, ClosingWhatIsClosedDoesNothing) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.close();
  EXPECT_STREQ(port.takeEvents(), "");
  serial.open();
  serial.close();
  port->clear();
  serial.close();
  EXPECT_STREQ(port.takeEvents(), "");
}

TEST(SerialOpening, DestructionReleasesThePortAsClosingDoes) {
  tRecordedPort port;
  {
    tSerialTraceDestination serial;
    serial.open();
    port->clear();
  }
  EXPECT_STREQ(port.takeEvents(), kClosing);
}

TEST(SerialOpening, OpenDestinationIsClosedBeforeItIsOpenedAgain) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  port->clear();
  EXPECT_EQ(serial.open(), u32{1});
  EXPECT_STREQ(port.takeEvents(), "release(7) delete new(0) open(0,0,0) w3FB=80 w3F8=1 w3FB=3 ");
  EXPECT_EQ(port->objects, u32{1});
}

TEST(SerialOpening, FailsWithoutABusAndHoldsNothing) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  port->isBusMissing = true;
  EXPECT_EQ(serial.open(), u32{0});
  EXPECT_STREQ(port.takeEvents(), "new(0) ");
  serial.put("x");
  serial.close();
  EXPECT_STREQ(port.takeEvents(), "");
}

TEST(SerialOpening, FailsWithoutAHandleAndDestroysTheBus) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  port->handle = 0;
  EXPECT_EQ(serial.open(), u32{0});
  EXPECT_STREQ(port.takeEvents(), "new(0) open(0,0,0) delete ");
  EXPECT_EQ(port->objects, u32{0});
  serial.put("x", 1);
  serial.close();
  EXPECT_STREQ(port.takeEvents(), "");
}

TEST(SerialOpening, SucceedsAfterAFailure) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  port->isBusMissing = true;
  serial.open();
  port->isBusMissing = false;
  port->clear();
  EXPECT_EQ(serial.open(), u32{1});
  EXPECT_STREQ(port.takeEvents(), kOpening);
}

TEST(SerialRate, EveryWordHasItsDivisorAndDescription) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  for (tRate const& rate : kRates) {
    configure(serial, rate.word);
    EXPECT_STREQ(serial.getDescription(), rate.description);
    serial.open();
    port->clear();
    reopen(serial, port);
    char const* const events = port.takeEvents();
    EXPECT_STREQ(events + __builtin_strlen("new(0) open(0,0,0) "), rate.accesses);
  }
}

TEST(SerialRate, TakesEffectOnlyWhenOpenedNext) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  port->clear();
  configure(serial, "9600");
  EXPECT_STREQ(port.takeEvents(), "");
  reopen(serial, port);
  EXPECT_STREQ(port.takeEvents(), "new(0) open(0,0,0) w3FB=80 w3F8=C w3FB=3 ");
}

TEST(SerialRate, OtherWordsChangeNothing) {
  tSerialTraceDestination serial;
  configure(serial, "9600");
  configure(serial, "110", "115201", "", " 9600", "9600 ", "19200x", "0x2580", "on");
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 9600"));
}

TEST(SerialRate, NullWordsAreSkipped) {
  tSerialTraceDestination serial;
  char const* const none = nullptr;
  configure(serial, none, "4800", none);
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 4800"));
}

TEST(SerialRate, WordsThatAreNotThereChangeNothing) {
  tSerialTraceDestination serial;
  configure(serial, "9600");
  serial.configure(1, nullptr);
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 9600"));
}

TEST(SerialRate, LastOfSeveralWordsWins) {
  tSerialTraceDestination serial;
  configure(serial, "9600", "2400", "bogus");
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 2400"));
}

TEST(SerialRate, NoWordsChangeNothing) {
  tSerialTraceDestination serial;
  configure(serial, "1200");
  serial.configure(0, nullptr);
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 1200"));
}

TEST(SerialRate, IsSetByOneWord) {
  tSerialTraceDestination serial;
  serial.setDivisor("57600");
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 57600"));
  serial.setDivisor(nullptr);
  serial.setDivisor("57601");
  serial.setDivisor("");
  EXPECT_TRUE(isDescribed(serial, "Serial port with baud rate 57600"));
}

TEST(SerialRate, PortIsProgrammedDirectlyWithAnyLineControl) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  port->clear();
  serial.setupSerialPort(12, 0x1B);
  EXPECT_STREQ(port.takeEvents(), "w3FB=80 w3F8=C w3FB=1B ");
}

TEST(SerialRate, OnlyTheLowByteOfADivisorIsWritten) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  port->clear();
  serial.setupSerialPort(0x1234, 0xFF);
  serial.setupSerialPort(0, 0);
  EXPECT_STREQ(port.takeEvents(), "w3FB=80 w3F8=34 w3FB=FF w3FB=80 w3F8=0 w3FB=0 ");
}

TEST(SerialRate, ClosedPortIsNotProgrammed) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.setupSerialPort(1, 3);
  EXPECT_STREQ(port.takeEvents(), "");
}
