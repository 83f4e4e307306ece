#include "machine/interrupts.h"

#include "machine/ports.h"

extern "C" void timerEntry();
extern "C" void faultEntry();

namespace {

constexpr u32 kFaultCount = 32;
constexpr u8 kTimerVector = 0x20;
constexpr u8 kSecondVector = 0x28;
constexpr u16 kCodeSelector = 8;
constexpr u16 kInterruptGate = 0x8E00;  // present, for the kernel, interrupts off

constexpr u16 kFirstController = 0x20;
constexpr u16 kSecondController = 0xA0;
constexpr u8 kInitialise = 0x11;
constexpr u8 kSecondIsAtLine2 = 0x04;
constexpr u8 kSecondIdentity = 0x02;
constexpr u8 kMode8086 = 0x01;
constexpr u8 kEndOfInterrupt = 0x20;
constexpr u8 kAllButTimer = 0xFE;
constexpr u8 kAll = 0xFF;

// The processor's own controller passes the others on once its first line says so. A boot loader
// would have seen to that.
constexpr size_t kLocalLine0 = 0xFEE00350;
constexpr u32 kFromOtherController = 0x700;

struct tGate {
  u16 low;
  u16 selector;
  u16 kind;
  u16 middle;
  u32 high;
  u32 unused;
};
static_assert(sizeof(tGate) == 16);

struct __attribute__((packed)) tTableRegister {
  u16 limit;
  u64 base;
};

constinit tGate gates[kFaultCount + 1] = {};

tGate gateTo(void (*entry)()) {
  u64 const address = reinterpret_cast<u64>(entry);
  return {static_cast<u16>(address),
          kCodeSelector,
          kInterruptGate,
          static_cast<u16>(address >> 16),
          static_cast<u32>(address >> 32),
          0};
}

void startController(u16 port, u8 vector, u8 wiring, u8 mask) {
  u16 const data = static_cast<u16>(port + 1);
  writePort(port, kInitialise);
  writePort(data, vector);
  writePort(data, wiring);
  writePort(data, kMode8086);
  writePort(data, mask);
}

}  // namespace

void catchFaults() {
  for (tGate& gate : gates) gate = gateTo(faultEntry);
  tTableRegister const table{sizeof(gates) - 1, reinterpret_cast<u64>(gates)};
  __asm__ volatile("lidt %0" : : "m"(table));
}

void allowTimerInterrupt() {
  gates[kTimerVector] = gateTo(timerEntry);
  startController(kFirstController, kTimerVector, kSecondIsAtLine2, kAllButTimer);
  startController(kSecondController, kSecondVector, kSecondIdentity, kAll);
  *reinterpret_cast<u32 volatile*>(kLocalLine0) = kFromOtherController;
  __asm__ volatile("sti" : : : "memory");
}

void endOfInterrupt() {
  writePort(kFirstController, kEndOfInterrupt);
}
