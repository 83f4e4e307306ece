// Runs every path that has a budget of instructions once, for callgrind; ./dev budget reads what it
// counts.

#include <thread>

#include "measure.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

int main() {
  if (vexkInitialize() < 0 || qelmkInitialize() < 0 || oxdiagkInitialize(nullptr) < 0) {
    std::fputs("oxdiag_paths: the library cannot be started.\n", stderr);
    return 3;
  }
  // A kernel has more than one thread, and the C library's locks are dearer then.
  std::thread([] {}).join();
  CALLGRIND_DUMP_STATS_AT("start");  // else the thread would be counted with the first path
  measureLines();
  measureValues();
  measureStatuses();
  measureConfiguring();
  measureViews();
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  return 0;
}
