#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

// Ends a program that serves: SIGINT, SIGTERM and, unless the program was started to ignore it,
// SIGHUP belong to this object while it lives. The first of them asks the program to end in order.
// A program that has not destroyed the object within kPatience then, because nobody takes what it
// writes, is ended with kExitNoOutput and a sentence on standard error.
class tEndWatch {
 public:
  static constexpr std::chrono::milliseconds kPatience{800};

  // To be made before other threads are started: they inherit that the signals are not theirs.
  tEndWatch();
  ~tEndWatch();
  tEndWatch(tEndWatch const&) = delete;
  tEndWatch& operator=(tEndWatch const&) = delete;

  // Waits until the end is asked for, at most so long; false when it is not. Any thread.
  bool waitForEnd(std::chrono::milliseconds longest);

 private:
  void watch();

  std::mutex lock;
  std::condition_variable changed;
  bool isAskedFor = false;
  bool isOver = false;
  std::thread thread;
};
