#pragma once

// Help for tests of the host's serial port.

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "vexk/iBus.h"
#include "vexkhost/serialPort.h"

// The ports of COM1.
enum : u16 {
  kComData = 0x3F8,
  kComInterruptEnable = 0x3F9,
  kComFifoControl = 0x3FA,
  kComLineControl = 0x3FB,
  kComModemControl = 0x3FC,
  kComLineStatus = 0x3FD,
  kComModemStatus = 0x3FE,
  kComScratch = 0x3FF,
};

// The system's bus, opened.
class tOpenPorts {
 public:
  tOpenPorts() : bus(busNewBusObject(kBusSystemIo)), handle(bus->openRange(0, 0, 0)) {}
  ~tOpenPorts() {
    bus->releaseHandle(&handle);
    busDeleteBusObject(bus);
  }
  tOpenPorts(tOpenPorts const&) = delete;
  tOpenPorts& operator=(tOpenPorts const&) = delete;

  u8 read(u64 port) const { return bus->readByte(handle, port, kBusReadByte); }
  void write(u64 port, u8 value) const { bus->writeByte(handle, port, value, kBusWriteByte); }

  iBus* bus;
  u32 handle;
};

// A file for the port, connected while an object of this class lives.
class tSerialFile {
 public:
  tSerialFile() {
    path = testing::TempDir() + "serialPort.XXXXXX";
    close(mkstemp(path.data()));
    isConnected = vexkhost::connectSerialFile(path.c_str());
  }
  ~tSerialFile() {
    vexkhost::disconnectSerialPort();
    unlink(path.c_str());
  }
  tSerialFile(tSerialFile const&) = delete;
  tSerialFile& operator=(tSerialFile const&) = delete;

  std::string content() const {
    std::string all;
    FILE* const file = fopen(path.c_str(), "rb");
    for (int byte = fgetc(file); byte != EOF; byte = fgetc(file)) all += static_cast<char>(byte);
    fclose(file);
    return all;
  }

  std::string path;
  bool isConnected;
};
