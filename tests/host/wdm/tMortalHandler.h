#pragma once

// A child's handler that deletes itself in its last call, and what becomes of it.

#include <atomic>
#include <thread>

#include "vexk/iChildHandler.h"

// Outlives the handler.
struct tMortalFate {
  std::atomic<int> running = 0;  // requests in the handler
  std::atomic<int> served = 0;   // requests that were in it
  std::atomic<int> stops = 0;
  std::atomic<int> runningAtStop = 0;
  std::atomic<bool> isSurprise = false;

  // How often a request gives the other threads their turn.
  int yields = 0;

  // While it is set, the first request stays in the handler.
  std::atomic<bool> holds = false;

  void waitUntilRunning() const {
    while (running == 0) std::this_thread::yield();
  }
  bool isAlive() const { return stops == 0; }
};

class tMortalHandler final : public iChildHandler {
 public:
  explicit tMortalHandler(tMortalFate& told) : fate(told) {}
  tMortalHandler(tMortalHandler const&) = delete;
  tMortalHandler& operator=(tMortalHandler const&) = delete;

  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32*) override {
    ++fate.running;
    bool const isFirst = ++fate.served == 1;
    for (int turn = 0; turn < fate.yields; ++turn) std::this_thread::yield();
    while (isFirst && fate.holds) std::this_thread::yield();
    --fate.running;
  }

  void stop(bool isSurprise) override {
    fate.runningAtStop += fate.running;
    fate.isSurprise = isSurprise;
    ++fate.stops;
    delete this;
  }

 private:
  tMortalFate& fate;
};
