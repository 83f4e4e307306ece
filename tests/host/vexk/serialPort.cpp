// The model of a 16550 behind the host's I/O ports, connected to a file or to nothing.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <atomic>
#include <thread>
#include <vector>

#include "ntoshost/executive.h"
#include "serialSupport.h"

namespace {

struct tAccesses {
  std::vector<vexkhost::SerialAccess> list;

  tAccesses() {
    vexkhost::setSerialAccessHook(
        [](void* context, vexkhost::SerialAccess const& access) {
          static_cast<tAccesses*>(context)->list.push_back(access);
        },
        this);
  }
  ~tAccesses() { vexkhost::setSerialAccessHook(nullptr, nullptr); }
  tAccesses(tAccesses const&) = delete;
  tAccesses& operator=(tAccesses const&) = delete;
};

}  // namespace

TEST(SerialPort, ReadsFFEverywhereWhenNothingIsConnected) {
  tOpenPorts const ports;
  for (u64 port = kComData; port <= kComScratch; ++port) {
    ports.write(port, 0x55);
    EXPECT_EQ(ports.read(port), 0xFF) << port;
  }
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
}

TEST(SerialPort, OtherPortsReadFFAndIgnoreWrites) {
  tSerialFile const file;
  tOpenPorts const ports;
  for (u64 const port : {u64{0}, u64{0x2F8}, u64{0x3F7}, u64{0x400}, u64{0x103F8}, ~u64{0}}) {
    ports.write(port, 'x');
    EXPECT_EQ(ports.read(port), 0xFF) << port;
  }
  EXPECT_EQ(file.content(), "");
}

TEST(SerialPort, WrongHandlesAndAccessWordsReachNothing) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.bus->writeByte(0, kComData, 'x', kBusWriteByte);
  ports.bus->writeByte(ports.handle + 1, kComData, 'x', kBusWriteByte);
  ports.bus->writeByte(ports.handle, kComData, 'x', kBusReadByte);
  EXPECT_EQ(file.content(), "");
  EXPECT_EQ(ports.bus->readByte(0, kComModemStatus, kBusReadByte), 0xFF);
  EXPECT_EQ(ports.bus->readByte(ports.handle, kComModemStatus, kBusWriteByte), 0xFF);
}

TEST(SerialPort, BusIsRefusedWhenMemoryIsExhausted) {
  u64 const before = ntoshost::outstandingBlocks();
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(busNewBusObject(kBusSystemIo), nullptr);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(SerialPort, PortsAreRefusedAsAFallibleCall) {
  iBus* bus = busNewBusObject(kBusSystemIo);
  ASSERT_NE(bus, nullptr);
  ntoshost::failNth(ntoshost::kFaultBus, 1);
  EXPECT_EQ(bus->openRange(0, 0, 0), 0u);
  EXPECT_NE(bus->openRange(0, 0, 0), 0u);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  busDeleteBusObject(bus);
}

TEST(SerialPort, ConnectingIsAFallibleCallThatLeavesNothingConnected) {
  tSerialFile const file;
  char name[64];
  ntoshost::failNth(ntoshost::kFaultSerialLine, 1);
  errno = 0;
  EXPECT_FALSE(vexkhost::connectSerialTerminal(name, sizeof(name)));
  ntoshost::clearFaults();
  EXPECT_EQ(errno, EMFILE);
  tOpenPorts const ports;
  EXPECT_EQ(ports.read(kComLineStatus), 0xFF);
  ASSERT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  ntoshost::failNth(ntoshost::kFaultSerialLine, 1);
  EXPECT_FALSE(vexkhost::connectSerialFile(file.path.c_str()));
  ntoshost::clearFaults();
  EXPECT_EQ(ports.read(kComLineStatus), 0xFF);
}

TEST(SerialPort, ConnectingTakesNoOtherFault) {
  tSerialFile const file;
  ntoshost::failFrom(ntoshost::kFaultAll & ~ntoshost::kFaultSerialLine, 1);
  EXPECT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

TEST(SerialPort, StartsIdleAndReady) {
  tSerialFile const file;
  tOpenPorts const ports;
  EXPECT_EQ(ports.read(kComData), 0x00);
  EXPECT_EQ(ports.read(kComInterruptEnable), 0x00);
  EXPECT_EQ(ports.read(kComFifoControl), 0x01);  // no interrupt, no FIFO
  EXPECT_EQ(ports.read(kComLineControl), 0x00);
  EXPECT_EQ(ports.read(kComModemControl), 0x00);
  EXPECT_EQ(ports.read(kComLineStatus), 0x60);
  EXPECT_EQ(ports.read(kComModemStatus), 0xB0);
  EXPECT_EQ(ports.read(kComScratch), 0x00);
}

TEST(SerialPort, DivisorLatchCoversTheFirstTwoRegistersWhileItsBitIsSet) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.write(kComInterruptEnable, 0x05);
  ports.write(kComLineControl, 0x80);
  ports.write(kComData, 0x0C);
  ports.write(kComInterruptEnable, 0x01);
  EXPECT_EQ(ports.read(kComData), 0x0C);
  EXPECT_EQ(ports.read(kComInterruptEnable), 0x01);
  ports.write(kComLineControl, 0x03);
  EXPECT_EQ(ports.read(kComData), 0x00);
  EXPECT_EQ(ports.read(kComInterruptEnable), 0x05);
  EXPECT_EQ(file.content(), "");
}

TEST(SerialPort, RegistersKeepWhatTheyHaveBitsFor) {
  tSerialFile const file;
  tOpenPorts const ports;
  for (u16 const port : {kComInterruptEnable, kComModemControl, kComScratch, kComLineControl}) {
    ports.write(port, 0xFF);
  }
  EXPECT_EQ(ports.read(kComModemControl), 0x1F);
  EXPECT_EQ(ports.read(kComScratch), 0xFF);
  EXPECT_EQ(ports.read(kComLineControl), 0xFF);
  ports.write(kComLineControl, 0x03);
  EXPECT_EQ(ports.read(kComInterruptEnable), 0x0F);
}

TEST(SerialPort, FifoIsTold) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.write(kComFifoControl, 0x01);
  EXPECT_EQ(ports.read(kComFifoControl), 0xC1);
  ports.write(kComFifoControl, 0x00);
  EXPECT_EQ(ports.read(kComFifoControl), 0x01);
}

TEST(SerialPort, StatusRegistersAreReadOnly) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.write(kComLineStatus, 0x00);
  ports.write(kComModemStatus, 0x00);
  EXPECT_EQ(ports.read(kComLineStatus), 0x60);
  EXPECT_EQ(ports.read(kComModemStatus), 0xB0);
}

TEST(SerialPort, BytesAreInTheFileAsSoonAsTheyAreSent) {
  tSerialFile const file;
  ASSERT_TRUE(file.isConnected);
  tOpenPorts const ports;
  ports.write(kComData, 'a');
  EXPECT_EQ(file.content(), "a");
  ports.write(kComData, 0);
  ports.write(kComData, 0xFF);
  EXPECT_EQ(file.content(), std::string("a\0\xFF", 3));
  EXPECT_EQ(ports.read(kComLineStatus), 0x60);
}

TEST(SerialPort, FileIsEmptiedByTheConnection) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.write(kComData, 'a');
  EXPECT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  EXPECT_EQ(file.content(), "");
}

TEST(SerialPort, FileIsCreatedForAllWhomTheMaskAllows) {
  tSerialFile const file;
  unlink(file.path.c_str());
  mode_t const mask = umask(0);
  EXPECT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  umask(mask);
  struct stat made = {};
  EXPECT_EQ(stat(file.path.c_str(), &made), 0);
  EXPECT_EQ(made.st_mode, mode_t{S_IFREG | 0666});
}

TEST(SerialPort, AnEarlierErrorSendsNoByteTwice) {
  tSerialFile const file;
  tOpenPorts const ports;
  errno = EINTR;
  ports.write(kComData, 'a');
  EXPECT_EQ(file.content(), "a");
}

// A pipe that is full has the program wait, and a signal interrupts that.
TEST(SerialPort, ASignalLosesNoByte) {
  static std::atomic<int> signals;
  tSerialFile const file;
  vexkhost::disconnectSerialPort();
  unlink(file.path.c_str());
  ASSERT_EQ(mkfifo(file.path.c_str(), 0600), 0);
  int const reader = open(file.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  int const size = fcntl(reader, F_SETPIPE_SZ, 4096);
  struct sigaction former;
  struct sigaction interrupting = {};
  interrupting.sa_handler = [](int) { ++signals; };
  sigaction(SIGUSR1, &interrupting, &former);
  std::atomic<bool> isSent = false;
  std::thread sender([&] {
    tOpenPorts const ports;
    for (int count = 0; count <= size; ++count) ports.write(kComData, 'a');
    isSent = true;
  });
  for (int waiting = 0; waiting != size;) ASSERT_EQ(ioctl(reader, FIONREAD, &waiting), 0);
  for (int count = 1; count <= 50; ++count) {
    pthread_kill(sender.native_handle(), SIGUSR1);
    while (signals < count) std::this_thread::yield();
  }
  int received = 0;
  char bytes[4096];
  while (true) {
    bool const wasSent = isSent;
    ssize_t const got = read(reader, bytes, sizeof(bytes));
    if (got > 0) received += static_cast<int>(got);
    if (got <= 0 && wasSent) break;
  }
  sender.join();
  EXPECT_EQ(received, size + 1);
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
  sigaction(SIGUSR1, &former, nullptr);
  close(reader);
}

TEST(SerialPort, ConnectionResetsTheRegisters) {
  tSerialFile const file;
  tOpenPorts const ports;
  ports.write(kComScratch, 0x55);
  vexkhost::setSerialModemLines(0);
  EXPECT_TRUE(vexkhost::connectSerialFile(file.path.c_str()));
  EXPECT_EQ(ports.read(kComScratch), 0x00);
  EXPECT_EQ(ports.read(kComModemStatus), 0xB0);
}

TEST(SerialPort, FileThatCannotBeOpenedLeavesThePortAbsent) {
  tSerialFile const file;
  errno = 0;
  EXPECT_FALSE(vexkhost::connectSerialFile("no/such/folder/file"));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(tOpenPorts().read(kComScratch), 0xFF);
}

TEST(SerialPort, DisconnectedPortIsAbsent) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::disconnectSerialPort();
  vexkhost::disconnectSerialPort();
  ports.write(kComData, 'a');
  EXPECT_EQ(ports.read(kComLineStatus), 0xFF);
  EXPECT_EQ(file.content(), "");
}

TEST(SerialPort, FullDiskLosesBytesAndTheTransmitterIsEmpty) {
  ASSERT_TRUE(vexkhost::connectSerialFile("/dev/full"));
  tOpenPorts const ports;
  ports.write(kComData, 'a');
  ports.write(kComData, 'b');
  EXPECT_EQ(ports.read(kComLineStatus), 0x60);
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 2u);
  vexkhost::disconnectSerialPort();
}

TEST(SerialPort, NothingWaitsForAReaderOfAFile) {
  tSerialFile const file;
  tOpenPorts().write(kComData, 'a');
  EXPECT_TRUE(vexkhost::drainSerialPort(0));
  EXPECT_EQ(vexkhost::getLostSerialBytes(), 0u);
}

TEST(SerialPort, ModemLinesAreSetOneByOne) {
  tSerialFile const file;
  tOpenPorts const ports;
  u8 const lines[] = {vexkhost::kSerialClearToSend, vexkhost::kSerialDataSetReady,
                      vexkhost::kSerialRingIndicator, vexkhost::kSerialCarrierDetect, 0};
  for (u8 const line : lines) {
    vexkhost::setSerialModemLines(line);
    EXPECT_EQ(ports.read(kComModemStatus) & 0xF0, line);
  }
}

TEST(SerialPort, ModemLinesAreNothingButTheUpperFourBits) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::setSerialModemLines(0xBF);
  EXPECT_EQ(ports.read(kComModemStatus), 0xB0);
}

TEST(SerialPort, ChangeOfAModemLineIsToldOnce) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::setSerialModemLines(0x00);
  EXPECT_EQ(ports.read(kComModemStatus), 0x0B);
  EXPECT_EQ(ports.read(kComModemStatus), 0x00);
  vexkhost::setSerialModemLines(0x10);
  vexkhost::setSerialModemLines(0x00);
  EXPECT_EQ(ports.read(kComModemStatus), 0x01);
}

TEST(SerialPort, ChangesOfSeveralModemLinesAreToldTogether) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::setSerialModemLines(0x00);
  ports.read(kComModemStatus);
  vexkhost::setSerialModemLines(0x10);
  vexkhost::setSerialModemLines(0x30);
  EXPECT_EQ(ports.read(kComModemStatus), 0x33);
}

TEST(SerialPort, OnlyTheEndOfARingIsToldAsAChange) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::setSerialModemLines(0xF0);
  EXPECT_EQ(ports.read(kComModemStatus), 0xF0);
  vexkhost::setSerialModemLines(0xB0);
  EXPECT_EQ(ports.read(kComModemStatus), 0xB4);
}

TEST(SerialPort, HookSeesEveryAccessInOrder) {
  tSerialFile const file;
  tOpenPorts const ports;
  tAccesses const seen;
  ports.write(kComLineControl, 0x83);
  ports.read(kComModemStatus);
  ports.read(0x2F8);
  ASSERT_EQ(seen.list.size(), 3u);
  EXPECT_EQ(seen.list[0].port, kComLineControl);
  EXPECT_EQ(seen.list[0].value, 0x83);
  EXPECT_TRUE(seen.list[0].isWrite);
  EXPECT_EQ(seen.list[1].port, kComModemStatus);
  EXPECT_FALSE(seen.list[1].isWrite);
  EXPECT_EQ(seen.list[1].value, 0);
  EXPECT_EQ(seen.list[2].port, 0x2F8);
}

TEST(SerialPort, HookHasAllOtherThreadsWait) {
  static std::atomic<int> inside;
  static std::atomic<int> most;
  tSerialFile const file;
  vexkhost::setSerialAccessHook(
      [](void*, vexkhost::SerialAccess const&) {
        int const now = ++inside;
        if (now > most) most = now;
        std::this_thread::yield();
        --inside;
      },
      nullptr);
  auto const use = [] {
    tOpenPorts const ports;
    for (int count = 0; count < 100; ++count) ports.read(kComScratch);
  };
  std::thread other(use);
  use();
  other.join();
  vexkhost::setSerialAccessHook(nullptr, nullptr);
  EXPECT_EQ(most, 1);
}

TEST(SerialPort, HookActsBeforeTheAccessItSees) {
  tSerialFile const file;
  tOpenPorts const ports;
  vexkhost::setSerialModemLines(0);
  vexkhost::setSerialAccessHook(
      [](void*, vexkhost::SerialAccess const&) {
        vexkhost::setSerialModemLines(vexkhost::kSerialDataSetReady);
      },
      nullptr);
  EXPECT_EQ(ports.read(kComModemStatus) & 0xF0, vexkhost::kSerialDataSetReady);
  vexkhost::setSerialAccessHook(nullptr, nullptr);
  vexkhost::setSerialModemLines(0);
  EXPECT_EQ(ports.read(kComModemStatus) & 0xF0, 0);
}
