#pragma once

#include "wait/deadline.h"

namespace ntoshost {

// Threads that wait for a word of memory to change. Whoever changes it does so with a sequentially
// consistent atomic operation and then calls wakeParked.

// Sleeps while *word is `seen`, until it is woken or the deadline has passed; false then. Also
// returns true for no reason: look at the word again.
bool parkWhile(i32* word, i32 seen, Deadline const& deadline);

// Wakes every thread that sleeps on the word. Costs no system call when there is none.
void wakeParked(i32* word);

}  // namespace ntoshost
