#pragma once

// The processor's port space, for what the tests themselves do with the machine.

#include "ntos/types.h"

inline void writePort(u16 port, u8 value) {
  __asm__ volatile("outb %b0, %w1" : : "a"(value), "Nd"(port) : "memory");
}

inline u8 readPort(u16 port) {
  u8 value;
  __asm__ volatile("inb %w1, %b0" : "=a"(value) : "Nd"(port) : "memory");
  return value;
}
