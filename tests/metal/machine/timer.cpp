#include "machine/timer.h"

#include "machine/interrupts.h"
#include "machine/ports.h"

namespace {

constexpr u16 kChannel0 = 0x40;
constexpr u16 kChannel2 = 0x42;
constexpr u16 kControl = 0x43;
constexpr u16 kGate = 0x61;

// Count down once and raise the output at the end; both bytes of the count are written.
constexpr u8 kOnce0 = 0x30;
constexpr u8 kOnce2 = 0xB0;
constexpr u8 kLatch2 = 0x80;
constexpr u8 kGateOpenSpeakerOff = 0x01;
constexpr u32 kLongest = 0xFFFF;

constinit void (*timerAction)() = nullptr;

void load(u16 channel, u8 mode, u32 ticks) {
  writePort(kControl, mode);
  writePort(channel, static_cast<u8>(ticks));
  writePort(channel, static_cast<u8>(ticks >> 8));
}

}  // namespace

extern "C" void timerInterrupt() {
  endOfInterrupt();
  if (timerAction != nullptr) timerAction();
  timerAction = nullptr;
}

void afterMicroseconds(u32 microseconds, void (*action)()) {
  timerAction = action;
  allowTimerInterrupt();
  load(kChannel0, kOnce0, static_cast<u32>(u64{microseconds} * kTimerTicksPerSecond / 1'000'000));
}

tTickCount::tTickCount() {
  writePort(kGate, kGateOpenSpeakerOff);
  load(kChannel2, kOnce2, kLongest);
}

u32 tTickCount::get() const {
  writePort(kControl, kLatch2);
  u32 const low = readPort(kChannel2);
  return kLongest - (low | static_cast<u32>(readPort(kChannel2)) << 8);
}
