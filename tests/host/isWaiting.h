#pragma once

#include <chrono>
#include <future>

// Whether a thread that was started is still on its way a while later. One that waits for nothing
// has long been through.
template <class T>
bool isWaiting(std::future<T> const& one) {
  constexpr auto kAWhile = std::chrono::milliseconds(50);
  return one.wait_for(kAWhile) == std::future_status::timeout;
}
