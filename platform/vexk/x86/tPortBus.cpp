#include "x86/tPortBus.h"

void tPortBus::write(u16 port, u8 value) {
  __asm__ volatile("outb %b0, %w1" : : "a"(value), "Nd"(port) : "memory");
}

u8 tPortBus::read(u16 port) {
  u8 value;
  __asm__ volatile("inb %w1, %b0" : "=a"(value) : "Nd"(port) : "memory");
  return value;
}
