#pragma once

#include "compiler/types.h"

// What the calls need of the system. Declared apart, because the system's own headers give names to
// other types than ours.

namespace ntosprogram {

constexpr u32 kForever = 0xFFFFFFFF;

// One lock for the states of all objects that can be waited for.
void lockStates();
void unlockStates();

// Within the lock, which others have meanwhile: until the next announcement, or for so long.
// Returns false when the time is over. At times true without an announcement.
bool awaitChange(u32 milliseconds);
void announceChange();

u64 getThreadId();
u32 getProcessorNumber();

// Milliseconds since the machine was started.
u64 getUptime();

// In units of 100 ns since 1601, UTC.
i64 getSystemTime();

i64 getCounter();
i64 getCounterFrequency();

}  // namespace ntosprogram
