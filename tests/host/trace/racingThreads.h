#pragma once

// Threads for a test that races on purpose. Sources that include <thread> themselves run under the
// thread sanitizer, which would report just that.

#include <thread>
#include <vector>

// Runs `work` on `count` threads at once and waits for all of them.
template <class Work>
void runAtOnce(int count, Work work) {
  std::vector<std::thread> threads;
  for (int index = 0; index < count; ++index) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}
