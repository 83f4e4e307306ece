#pragma once

// Random operations on a container and on the standard one beside it, a part of them with failing
// allocations: those must change nothing.

#include <random>

#include "content.h"
#include "rounds.h"
#include "testAllocator.h"

constexpr int kModelSteps = roundsOf(800'000);
constexpr size_t kModelLongest = 60;  // elements; then both start anew, so a step stays cheap

class StlModel : public StlTest {
 protected:
  size_t below(size_t limit) { return random_() % limit; }
  bool oneOf(size_t chances) { return below(chances) == 0; }

  // A character with a few likely values, so that equal texts happen; sometimes a terminator.
  template <class C>
  C character() {
    return oneOf(20) ? C() : static_cast<C>("abAB\xE4"[below(5)]);
  }

  // Runs an operation, every eighth time with its first or second allocation failing. True when
  // the model has to follow; a refusal without a failed allocation is a test failure.
  template <class Container, class Operation>
  bool done(Container& container, Operation operation) {
    container.clearFailure();
    allocator.failNth(oneOf(8) ? static_cast<u32>(1 + below(2)) : 0);
    bool const result = operation();
    bool const fault = allocator.faultSeen();
    allocator.failNth(0);
    EXPECT_EQ(result, !fault);
    EXPECT_EQ(container.hasFailed(), fault);
    faults_ += fault;
    return result;
  }

  size_t faults() const { return faults_; }

 private:
  std::mt19937 random_{20240611};
  size_t faults_ = 0;
};
