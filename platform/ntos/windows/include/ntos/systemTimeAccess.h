#pragma once

#include "ntos/types.h"

// The time stands in the page that the kernel shares with everybody, on x64 at a fixed address.
constexpr size_t kSharedSystemTime = 0xFFFFF78000000014;

inline void KeQuerySystemTime(LARGE_INTEGER* time) {
  time->QuadPart = *reinterpret_cast<i64 const volatile*>(kSharedSystemTime);
}
