#pragma once

#include <functional>
#include <string>

#include "ntos/types.h"

// Jobs in processes that are copies of this one, so that the end of one ends no other.
class tWorkers {
 public:
  // False: this one was not done, and nobody needs another.
  using tJob = std::function<bool(u64 index)>;
  // True: the job is to be done again.
  using tEnd = std::function<bool(u64 index, std::string const& why)>;

  // Does each job with an index below `count` in one of several processes, where drive C is a fresh
  // folder and what is printed on standard error is kept. Calls `died` in this process with the
  // index of a job that ended its process, by a signal, an exit or as it took too long, and with
  // what it had printed.
  static void run(u64 count, tJob const& job, tEnd const& died);

  // For a job: what was printed so far is forgotten, drive C is emptied, and time begins anew.
  static void beginRound();

  // Memory that all of them share, zeroed.
  template <class T>
  static T* share(size_t count = 1) {
    return static_cast<T*>(shareBytes(count * sizeof(T)));
  }

 private:
  static void* shareBytes(size_t size);
};
