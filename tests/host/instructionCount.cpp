#include "instructionCount.h"

#include <signal.h>

namespace {

u64 volatile steps = 0;
struct sigaction former = {};

void countStep(int) {
  steps = steps + 1;
}

}  // namespace

void beginInstructionCount() {
  struct sigaction counting = {};
  counting.sa_handler = &countStep;
  sigaction(SIGTRAP, &counting, &former);
  steps = 0;
}

u64 endInstructionCount() {
  u64 const counted = steps;
  sigaction(SIGTRAP, &former, nullptr);
  return counted;
}
