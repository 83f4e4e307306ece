#pragma once

// How much work an operation is, as a number that neither the clock nor another load changes.

#include "ntos/types.h"

// Where the counting begins and ends, for `instructionsOf` alone: between the two every instruction
// of this thread ends in a signal that is counted, which costs microseconds each.
void beginInstructionCount();
u64 endInstructionCount();

// How many instructions `operation` runs on this thread, those of the system left out, and a few of
// the counting itself.
template <class Operation>
u64 instructionsOf(Operation operation) {
  beginInstructionCount();
  __asm__ volatile(
      "lea -128(%%rsp), %%rsp; pushfq; orq $0x100, (%%rsp); popfq; lea 128(%%rsp), %%rsp"
      :
      :
      : "cc", "memory");
  operation();
  __asm__ volatile(
      "lea -128(%%rsp), %%rsp; pushfq; andq $~0x100, (%%rsp); popfq; lea 128(%%rsp), %%rsp"
      :
      :
      : "cc", "memory");
  return endInstructionCount();
}
