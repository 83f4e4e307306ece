// Values that look alike but mean something else do not turn into each other by themselves.

#include "ntos/pool.h"
#include "vexk/tSSVersion.h"

bool isRelease(tSSVersion version);

constexpr u32 kTag = ntosPoolTag("oxdk");
constexpr u32 kShortTag = ntosPoolTag("oxd");  // expect-error: no matching function

bool conversions(u32 number) {
  tSSVersion const packed(number);
  return isRelease(packed) || isRelease(number);  // expect-error: no matching function
}
