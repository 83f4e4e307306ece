// What the serial destination tells of itself.

#include "conformance/harness.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "support/recordingBus.h"

namespace {

using nOXDIAG100::tSerialTraceDestination;

constexpr char kDefault[] = " --destination serial 115200";
constexpr u32 kDefaultRequired = 29;
constexpr char kTwice[] = " --destination serial  --destination serial ";

// inquire into a buffer full of '#'.
struct tInquiry {
  char buffer[64];
  unsigned int required = 0;
  char* end = nullptr;

  explicit tInquiry(tSerialTraceDestination& serial, unsigned int size = sizeof(buffer)) {
    __builtin_memset(buffer, '#', sizeof(buffer));
    end = serial.inquire(buffer, size, &required);
  }
};

bool isOpenedWith(char const* baud, char const* settings) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.setDivisor(baud);
  serial.open();
  tInquiry const inquiry(serial);
  return __builtin_strcmp(inquiry.buffer, settings) == 0 &&
         inquiry.required == __builtin_strlen(settings) + 1;
}

}  // namespace

TEST(SerialSettings, NewDestinationHasTheHighestRate) {
  tSerialTraceDestination serial;
  tInquiry const inquiry(serial);
  EXPECT_STREQ(inquiry.buffer, kDefault);
  EXPECT_EQ(inquiry.required, kDefaultRequired);
  EXPECT_STREQ(serial.getDescription(), "Serial port with baud rate 115200");
}

TEST(SerialSettings, EveryRateWithAWordIsToldByIt) {
  EXPECT_TRUE(isOpenedWith("115200", " --destination serial 115200"));
  EXPECT_TRUE(isOpenedWith("57600", " --destination serial 57600"));
  EXPECT_TRUE(isOpenedWith("38400", " --destination serial 38400"));
  EXPECT_TRUE(isOpenedWith("19200", " --destination serial 19200"));
  EXPECT_TRUE(isOpenedWith("9600", " --destination serial 9600"));
  EXPECT_TRUE(isOpenedWith("4800", " --destination serial 4800"));
  EXPECT_TRUE(isOpenedWith("2400", " --destination serial 2400"));
  EXPECT_TRUE(isOpenedWith("1200", " --destination serial 1200"));
}

TEST(SerialSettings, RateWithoutAWordIsToldByTheFirstPartAgain) {
  EXPECT_TRUE(isOpenedWith("2000", kTwice));
  EXPECT_TRUE(isOpenedWith("1800", kTwice));
  EXPECT_EQ(sizeof(kTwice), size_t{45});
}

TEST(SerialSettings, TellTheRateOfTheLastOpeningAndTheDescriptionTheChosenOne) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  serial.setDivisor("9600");
  EXPECT_STREQ(serial.getDescription(), "Serial port with baud rate 9600");
  EXPECT_STREQ(tInquiry(serial).buffer, kDefault);
  serial.open();
  EXPECT_STREQ(tInquiry(serial).buffer, " --destination serial 9600");
}

TEST(SerialSettings, StayWhenThePortIsClosed) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.setDivisor("9600");
  serial.open();
  serial.close();
  EXPECT_STREQ(tInquiry(serial).buffer, " --destination serial 9600");
}

TEST(SerialSettings, StayWhenThereIsNoBus) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.setDivisor("9600");
  port->isBusMissing = true;
  serial.open();
  EXPECT_STREQ(tInquiry(serial).buffer, kDefault);
}

TEST(SerialSettings, StayWhenTheBusDoesNotOpen) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.setDivisor("9600");
  port->handle = 0;
  serial.open();
  EXPECT_STREQ(tInquiry(serial).buffer, kDefault);
  EXPECT_STREQ(serial.getDescription(), "Serial port with baud rate 9600");
}

TEST(SerialSettings, AreNotChangedByProgrammingThePortDirectly) {
  tRecordedPort port;
  tSerialTraceDestination serial;
  serial.open();
  serial.setupSerialPort(12, 3);
  EXPECT_STREQ(tInquiry(serial).buffer, kDefault);
  EXPECT_STREQ(serial.getDescription(), "Serial port with baud rate 115200");
}

TEST(SerialSettings, AreMeasuredWithoutABuffer) {
  tSerialTraceDestination serial;
  unsigned int required = 0;
  EXPECT_TRUE(serial.inquire(nullptr, 0, &required) == nullptr);
  EXPECT_EQ(required, kDefaultRequired);
  required = 0;
  EXPECT_TRUE(serial.inquire(nullptr, 40, &required) == nullptr);
  EXPECT_EQ(required, kDefaultRequired);
}

TEST(SerialSettings, AreCutAtEverySizeAndTerminated) {
  tSerialTraceDestination serial;
  for (unsigned int size = 1; size < kDefaultRequired; ++size) {
    tInquiry const inquiry(serial, size);
    EXPECT_EQ(__builtin_strlen(inquiry.buffer), size_t{size - 1});
    EXPECT_EQ(__builtin_memcmp(inquiry.buffer, kDefault, size - 1), 0);
    EXPECT_EQ(inquiry.buffer[size], '#');
    EXPECT_TRUE(inquiry.end == inquiry.buffer + size);
    EXPECT_EQ(inquiry.required, kDefaultRequired);
  }
}

TEST(SerialSettings, WholeTextEndsAtItsTerminatorAndTheLastByteIsTerminatedToo) {
  tSerialTraceDestination serial;
  tInquiry const exact(serial, kDefaultRequired);
  EXPECT_STREQ(exact.buffer, kDefault);
  EXPECT_TRUE(exact.end == exact.buffer + kDefaultRequired - 1);
  tInquiry const larger(serial, kDefaultRequired + 2);
  EXPECT_TRUE(larger.end == larger.buffer + kDefaultRequired - 1);
  EXPECT_EQ(larger.buffer[kDefaultRequired], '#');
  EXPECT_EQ(larger.buffer[kDefaultRequired + 1], '\0');
}

TEST(SerialSettings, BufferOfSizeZeroIsNotTouched) {
  tSerialTraceDestination serial;
  tInquiry const inquiry(serial, 0);
  EXPECT_EQ(inquiry.buffer[0], '#');
  EXPECT_TRUE(inquiry.end == inquiry.buffer);
  EXPECT_EQ(inquiry.required, kDefaultRequired);
}

TEST(SerialSettings, RequiredSizeNeedNotBeAskedFor) {
  tSerialTraceDestination serial;
  char buffer[kDefaultRequired];
  serial.inquire(buffer, sizeof(buffer), nullptr);
  EXPECT_STREQ(buffer, kDefault);
}

TEST(SerialSettings, DescriptionsOfTwoDestinationsAreApart) {
  tSerialTraceDestination one;
  tSerialTraceDestination other;
  other.setDivisor("2000");
  char const* const ofOne = one.getDescription();
  char const* const ofOther = other.getDescription();
  EXPECT_STREQ(ofOne, "Serial port with baud rate 115200");
  EXPECT_STREQ(ofOther, "Serial port with baud rate 1986");
}
