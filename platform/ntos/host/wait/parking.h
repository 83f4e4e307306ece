#pragma once

#include "wait/deadline.h"

namespace ntoshost {

// Threads that wait for a word of memory to change. Whoever changes it does so with a sequentially
// consistent atomic operation and then wakes them.

// Sleeps while *word is `seen`, until it is woken or the deadline has passed; false then. Also
// returns true for no reason: look at the word again.
bool parkWhile(i32* word, i32 seen, Deadline const& deadline);

// Wakes one thread that sleeps on the word, or all. Costs no system call when there is none.
void wakeOneParked(i32* word);
void wakeAllParked(i32* word);

}  // namespace ntoshost
