// A driver's mistake: memory that is paged out is asked for at a level where it may not be. Says
// over which executive it runs, and whether it came that far.

#include <cstdio>

#include "ntos/irql.h"
#include "ntos/pool.h"
#include "ntos/types.h"
#include "ntoshost/strength.h"

constexpr u32 kTag = 0x74736554;

int main() {
  std::printf("%s\n", ntoshost::getStrength());
  std::fflush(stdout);
  KIRQL before;
  KeRaiseIrql(DISPATCH_LEVEL, &before);
  void* const block = ExAllocatePoolWithTag(PagedPool, 16, kTag);
  ExFreePoolWithTag(block, kTag);
  KeLowerIrql(before);
  std::puts("nobody objected");
}
