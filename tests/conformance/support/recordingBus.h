#pragma once

// A bus that keeps what happens to it and answers as a test says, in place of the machine's ports.
// For tests on every target: fixed storage, no constructor at load.

#include "vexk/iBus.h"
#include "vexk/number.h"

// What one register answers: the values in turn, and the last of them from then on.
struct tPortAnswers {
  static constexpr u32 kCapacity = 8;

  u8 values[kCapacity];
  u32 count;
  u32 reads;

  template <class... Values>
  void set(Values... next) {
    static_assert(sizeof...(next) > 0 && sizeof...(next) <= kCapacity);
    u8 const list[] = {static_cast<u8>(next)...};
    count = sizeof...(next);
    reads = 0;
    __builtin_memcpy(values, list, count);
  }

  u8 take() { return values[reads++ < count ? reads - 1 : count - 1]; }
};

// One word an event; what finds no room is dropped:
//
//   new(0)      a bus object was asked for      open(0,0,0)  with these arguments
//   r3FE=B0     port 0x3FE was read             release(7)   this handle
//   w3F8=61     port 0x3F8 was written          delete       the object is gone
//
// An access with a wrong handle or access word is told by "!" before it.
struct tBusRecord {
  static constexpr u32 kEventCapacity = 2048;

  char events[kEventCapacity + 1];
  u32 length;
  tPortAnswers modemStatus;  // of port 0x3FE
  tPortAnswers lineStatus;   // of port 0x3FD
  bool isBusMissing;         // there is no bus object
  u32 handle;                // what opening a range gives
  u32 writes;
  u32 objects;  // alive

  void clear() { events[length = 0] = 0; }

  void add(char const* text) {
    u32 const size = static_cast<u32>(__builtin_strlen(text));
    if (length + size > kEventCapacity) return;
    __builtin_memcpy(events + length, text, size + 1);
    length += size;
  }

  void addNumber(char const* before, u64 number, char const* after) {
    char text[kNumberTextSize];
    vexNumberToText(number, 16, text);
    add(before);
    add(text);
    add(after);
  }
};

inline constinit tBusRecord busRecord = {};

class tRecordingBus : public iBus {
 public:
  tRecordingBus() { ++busRecord.objects; }
  ~tRecordingBus() override {
    --busRecord.objects;
    busRecord.add("delete ");
  }

  u32 openRange(u64 base, u64 length, u32 flags) override {
    busRecord.addNumber("open(", base, "");
    busRecord.addNumber(",", length, "");
    busRecord.addNumber(",", flags, ") ");
    return busRecord.handle;
  }

  void releaseHandle(u32* handle) override {
    busRecord.addNumber("release(", *handle, ") ");
    *handle = 0;
  }

  void writeByte(u32 handle, u64 port, u8 value, u32 access) override {
    ++busRecord.writes;
    addAccess("w", handle, port, access == 0x40000000);
    busRecord.addNumber("=", value, " ");
  }

  u8 readByte(u32 handle, u64 port, u32 access) override {
    u8 const value = answer(port);
    addAccess("r", handle, port, access == 0xC0000000);
    busRecord.addNumber("=", value, " ");
    return value;
  }

 private:
  static u8 answer(u64 port) {
    if (port == 0x3FE) return busRecord.modemStatus.take();
    return port == 0x3FD ? busRecord.lineStatus.take() : u8{0};
  }

  static void addAccess(char const* kind, u32 handle, u64 port, bool isRight) {
    if (!isRight || handle != busRecord.handle) busRecord.add("!");
    busRecord.addNumber(kind, port, "");
  }
};

// While an object of this class lives, all buses are recording ones, of a port whose line is ready
// and whose transmitter is empty. One at a time.
class tRecordedPort {
 public:
  static constexpr u32 kHandle = 7;

  tRecordedPort() {
    __builtin_memset(&busRecord, 0, sizeof(busRecord));
    busRecord.handle = kHandle;
    busRecord.modemStatus.set(0xB0);
    busRecord.lineStatus.set(0x20);
    busSetFactory(&make);
  }
  ~tRecordedPort() { busSetFactory(nullptr); }
  tRecordedPort(tRecordedPort const&) = delete;
  tRecordedPort& operator=(tRecordedPort const&) = delete;

  tBusRecord* operator->() const { return &busRecord; }

  // The events since the start or since the last call of this.
  char const* takeEvents() {
    __builtin_memcpy(taken, busRecord.events, busRecord.length + 1);
    busRecord.clear();
    return taken;
  }

 private:
  static iBus* make(u32 busType) {
    busRecord.addNumber("new(", busType, ") ");
    return busRecord.isBusMissing ? nullptr : new tRecordingBus;
  }

  static inline constinit char taken[tBusRecord::kEventCapacity + 1] = {};
};
