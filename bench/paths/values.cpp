// Values in a line that is open, without the prefix: formatted text, and a dump of bytes.

#include "measure.h"
#include "tBenchStream.h"

void measureValues() {
  constexpr u32 kDumpLength = 256;
  constexpr u64 kRows = kDumpLength / 16;
  constexpr u32 kUnit = 4;
  tNullDestination destination;
  tBenchStream trace(destination);

  // The C library's own formats differ, so nothing here is printed by it.
  measurePath("putf",
              [&] { trace.putf("%s %d %#x %5u|%-8s\n", "modem", -42, 0xBEEFu, 17u, "fan"); });
  demand(destination.getPieces() >= kOperations, "putf");

  alignas(16) u8 bytes[kDumpLength];
  for (u32 index = 0; index < kDumpLength; ++index) bytes[index] = static_cast<u8>(index * 7);
  u64 const before = destination.getPieces();
  measurePath("hex dump of 256 bytes",
              [&] { trace.put(static_cast<void const*>(bytes), kDumpLength, kUnit); });
  demand(destination.getPieces() - before >= kOperations * kRows, "hex dump of 256 bytes");
}
