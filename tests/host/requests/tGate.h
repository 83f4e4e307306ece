#pragma once

#include <condition_variable>
#include <mutex>

// Where threads wait until somebody opens, and where others wait for them to arrive.
class tGate {
 public:
  void pass() {
    std::unique_lock held(lock);
    ++arrived;
    changed.notify_all();
    changed.wait(held, [this] { return isOpen; });
  }

  void awaitArrivals(int count) {
    std::unique_lock held(lock);
    changed.wait(held, [this, count] { return arrived >= count; });
  }

  void open() {
    std::unique_lock const held(lock);
    isOpen = true;
    changed.notify_all();
  }

 private:
  std::mutex lock;
  std::condition_variable changed;
  int arrived = 0;
  bool isOpen = false;
};
