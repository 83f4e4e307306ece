#pragma once

// The library and the modules beneath it. A host program is its own kernel: it starts them before
// it uses the library and stops them in reverse.
class tModules {
 public:
  // Starts all three. When one fails, what was started is stopped again.
  tModules();
  ~tModules();
  tModules(tModules const&) = delete;
  tModules& operator=(tModules const&) = delete;

  bool areRunning() const { return started == kAll; }

 private:
  static constexpr int kAll = 3;

  int started = 0;
};
