// The host's serial port on a pseudo terminal, with and without a reader.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

#include "serialSupport.h"

namespace {

// Waits for so many bytes, or until the port is disconnected.
std::string readFrom(int reader, size_t count) {
  std::string text(count, '#');
  size_t length = 0;
  while (length < count) {
    ssize_t const got = read(reader, text.data() + length, count - length);
    if (got <= 0) break;
    length += static_cast<size_t>(got);
  }
  return text.substr(0, length);
}

// A terminal for the port, connected while an object of this class lives, and a program that has it
// open.
class tTerminal {
 public:
  tTerminal() : isConnected(vexkhost::connectSerialTerminal(name, sizeof(name))) {
    reader = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~tTerminal() {
    close(reader);
    vexkhost::disconnectSerialPort();
  }
  tTerminal(tTerminal const&) = delete;
  tTerminal& operator=(tTerminal const&) = delete;

  std::string readBytes(size_t count) const { return readFrom(reader, count); }

  char name[64] = {};
  bool isConnected;
  int reader;
};

void waitForTheTransmitter(tOpenPorts const& ports) {
  while ((ports.read(kComLineStatus) & 0x20) == 0) std::this_thread::yield();
}

// Sends bytes until the terminal takes no more, and returns how many went out.
size_t fill(tOpenPorts const& ports, char value) {
  size_t count = 0;
  while ((ports.read(kComLineStatus) & 0x20) != 0) {
    ports.write(kComData, static_cast<u8>(value));
    ++count;
  }
  return count - 1;  // the last one waits in the transmitter
}

long countDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Descriptors that a program would get which this one starts.
int countInherited() {
  int count = 0;
  for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    int const flags = fcntl(std::stoi(entry.path().filename()), F_GETFD);
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
  }
  return count;
}

u64 millisecondsSince(std::chrono::steady_clock::time_point start) {
  auto const elapsed = std::chrono::steady_clock::now() - start;
  return static_cast<u64>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
}

}  // namespace

TEST(SerialTerminal, HasANameThatCanBeOpened) {
  tTerminal const terminal;
  EXPECT_TRUE(terminal.isConnected);
  EXPECT_EQ(std::string(terminal.name).substr(0, 5), "/dev/");
  EXPECT_GE(terminal.reader, 0);
  EXPECT_TRUE(isatty(terminal.reader));
}

TEST(SerialTerminal, BytesArriveAsTheyWereSent) {
  tTerminal const terminal;
  tOpenPorts const ports;
  std::string const sent("a\n\r\0\x03\x04\x11\x13\x1A\x7F\xFF", 11);
  for (char const byte : sent) ports.write(kComData, static_cast<u8>(byte));
  EXPECT_EQ(terminal.readBytes(sent.size()), sent);
}

TEST(SerialTerminal, BytesWaitForAReaderThatComesLate) {
  char name[64];
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  tOpenPorts const ports;
  ports.write(kComData, 'a');
  ports.write(kComData, 'b');
  int const reader = open(name, O_RDONLY | O_NOCTTY);
  EXPECT_EQ(readFrom(reader, 2), "ab");
  close(reader);
  vexkhost::disconnectSerialPort();
}

TEST(SerialTerminal, ReaderMayGoAndAnotherCome) {
  char name[64];
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  tOpenPorts const ports;
  for (char const byte : {'a', 'b', 'c'}) {
    ports.write(kComData, static_cast<u8>(byte));
    int const reader = open(name, O_RDONLY | O_NOCTTY);
    EXPECT_EQ(readFrom(reader, 1), std::string(1, byte));
    close(reader);
  }
  vexkhost::disconnectSerialPort();
}

TEST(SerialTerminal, NameThatFindsNoRoomLeavesThePortAbsent) {
  char name[4];
  errno = 0;
  EXPECT_FALSE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  EXPECT_EQ(errno, ERANGE);
  EXPECT_EQ(tOpenPorts().read(kComScratch), 0xFF);
}

TEST(SerialTerminal, NoDescriptorIsLeftOrMissing) {
  char name[64];
  char tooShort[4];
  long const before = countDescriptors();
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
    EXPECT_EQ(countDescriptors(), before + 2);
  }
  EXPECT_FALSE(vexkhost::connectSerialTerminal(tooShort, sizeof(tooShort)));
  EXPECT_EQ(countDescriptors(), before);
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  tSerialFile const file;
  EXPECT_EQ(countDescriptors(), before + 1);
  vexkhost::disconnectSerialPort();
  EXPECT_EQ(countDescriptors(), before);
}

TEST(SerialTerminal, WithoutADescriptorThePortIsAbsentAndTheReasonIsTold) {
  char name[64];
  int const lowest = dup(0);
  close(lowest);
  rlimit former;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
  long const before = countDescriptors();
  for (rlim_t spare = 0; spare < 2; ++spare) {
    rlimit const few = {static_cast<rlim_t>(lowest) + spare, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    errno = 0;
    EXPECT_FALSE(vexkhost::connectSerialTerminal(name, sizeof(name)));
    EXPECT_EQ(errno, EMFILE);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
    EXPECT_EQ(countDescriptors(), before);
    EXPECT_EQ(tOpenPorts().read(kComScratch), 0xFF);
  }
}

TEST(SerialTerminal, TheDescriptorOfTheStandardInputIsOneLikeOthers) {
  char name[64];
  int const kept = dup(0);
  close(0);
  long const before = countDescriptors();
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  EXPECT_EQ(countDescriptors(), before + 2);
  vexkhost::disconnectSerialPort();
  EXPECT_EQ(countDescriptors(), before);
  dup2(kept, 0);
  close(kept);
}

TEST(SerialTerminal, IsNothingToProgramsThatThisOneStarts) {
  char name[64];
  int const before = countInherited();
  ASSERT_TRUE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  EXPECT_EQ(countInherited(), before);
  vexkhost::disconnectSerialPort();
}

TEST(SerialTerminal, DoesNotBecomeTheTerminalOfTheSession) {
  pid_t const child = fork();
  if (child == 0) {
    char name[64];
    setsid();
    bool const isConnected = vexkhost::connectSerialTerminal(name, sizeof(name));
    _exit(isConnected && open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(SerialTerminal, TransmitterIsBusyWhileTheTerminalIsFull) {
  tTerminal const terminal;
  tOpenPorts const ports;
  size_t const count = fill(ports, 'x');
  EXPECT_GE(count, 1024u);
  EXPECT_EQ(ports.read(kComLineStatus), 0x00);
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
}

TEST(SerialTerminal, ReaderOfAFullTerminalGetsTheWaitingByteToo) {
  tTerminal const terminal;
  tOpenPorts const ports;
  size_t const count = fill(ports, 'x');
  ports.write(kComData, 'z');  // over the one that waits: nobody looked at the line status
  std::string got = terminal.readBytes(count);
  waitForTheTransmitter(ports);
  got += terminal.readBytes(1);
  EXPECT_EQ(got, std::string(count, 'x') + 'z');
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
}

TEST(SerialTerminal, SlowReaderLosesNothing) {
  tTerminal const terminal;
  tOpenPorts const ports;
  constexpr size_t kCount = 100'000;
  std::string sent;
  for (size_t index = 0; index < kCount; ++index) sent += static_cast<char>('a' + index % 26);
  std::string got;
  std::thread reader([&] {
    for (int piece = 0; piece < 50; ++piece) {
      got += terminal.readBytes(kCount / 50);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));  // a slow reader
    }
  });
  for (char const byte : sent) {
    waitForTheTransmitter(ports);
    ports.write(kComData, static_cast<u8>(byte));
  }
  waitForTheTransmitter(ports);
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
  EXPECT_TRUE(vexkhost::drainSerialPort(60'000));
  vexkhost::disconnectSerialPort();
  reader.join();
  EXPECT_TRUE(got == sent);
}

TEST(SerialTerminal, WithoutAReaderHoldsTheProgramUpOnceAndThenLosesBytes) {
  tTerminal const terminal;
  tOpenPorts const ports;
  auto const start = std::chrono::steady_clock::now();
  fill(ports, 'x');
  waitForTheTransmitter(ports);
  EXPECT_GE(millisecondsSince(start), vexkhost::kSerialPatience);
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 1u);
  for (int index = 0; index < 1000; ++index) {
    EXPECT_EQ(ports.read(kComLineStatus), 0x60);
    ports.write(kComData, 'y');
  }
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 1001u);
}

TEST(SerialTerminal, ReaderThatComesAfterALossGetsWhatFollows) {
  tTerminal const terminal;
  tOpenPorts const ports;
  size_t const count = fill(ports, 'x');
  waitForTheTransmitter(ports);
  EXPECT_EQ(terminal.readBytes(count), std::string(count, 'x'));
  ports.write(kComData, 'n');
  EXPECT_EQ(terminal.readBytes(1), "n");
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 1u);
}

TEST(SerialTerminal, PatienceBeginsAnewWhenSomebodyHasRead) {
  tTerminal const terminal;
  tOpenPorts const ports;
  size_t const count = fill(ports, 'x');
  terminal.readBytes(count);
  waitForTheTransmitter(ports);
  // That of before would be over.
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  auto const start = std::chrono::steady_clock::now();
  fill(ports, 'y');
  waitForTheTransmitter(ports);
  EXPECT_GE(millisecondsSince(start), vexkhost::kSerialPatience);
}

TEST(SerialTerminal, DrainingWaitsForTheReader) {
  tTerminal const terminal;
  tOpenPorts const ports;
  for (int index = 0; index < 100; ++index) ports.write(kComData, 'a');
  EXPECT_FALSE(vexkhost::drainSerialPort(30));
  std::thread reader([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // until somebody waits
    terminal.readBytes(100);
  });
  EXPECT_TRUE(vexkhost::drainSerialPort(60'000));
  reader.join();
}
