#pragma once

// A point in time.

#include "compiler/types.h"
#include "vexk/api.h"

// 128 bits in four words, the lowest first: the time since 1 January 1601, 00:00 UTC, in units of
// 2^-64 s, so the two upper words are whole seconds. A plain value: copied freely, any IRQL.
struct tSSTimeAbsolute {
  static constexpr u32 kWordCount = 4;

  u32 words[kWordCount] = {};

  constexpr bool operator==(tSSTimeAbsolute const& other) const = default;

  // The system's time now, as fine as the system tells it. Any IRQL.
  static VEX_API tSSTimeAbsolute now();

  // A time in the kernel's form: units of 100 ns since the same moment. Any IRQL.
  static VEX_API tSSTimeAbsolute ofKernelTime(u64 hundredNanoseconds);

  constexpr u64 getSeconds() const { return static_cast<u64>(words[3]) << 32 | words[2]; }

  // The part behind the seconds, in units of 2^-64 s.
  constexpr u64 getFraction() const { return static_cast<u64>(words[1]) << 32 | words[0]; }
};
static_assert(sizeof(tSSTimeAbsolute) == 16, "crosses module borders");
