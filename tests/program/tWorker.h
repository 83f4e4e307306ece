#pragma once

// A second thread, which runs a function and ends. Apart from the tests, because the system's own
// headers give names to other types than ours.
class tWorker {
 public:
  explicit tWorker(void (*work)());
  ~tWorker();  // waits for the end
  tWorker(tWorker const&) = delete;
  tWorker& operator=(tWorker const&) = delete;

  static void sleep(unsigned int milliseconds);

 private:
  void* thread;
};
