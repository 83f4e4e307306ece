#include "conformance/testRun.h"

#include "ntos/debug.h"

namespace oxt {
namespace {

__declspec(allocate("oxt$a")) constinit tTest const* const firstEntry = nullptr;
__declspec(allocate("oxt$z")) constinit tTest const* const lastEntry = nullptr;

constinit tTest const* running = nullptr;
constinit bool runningFailed = false;
constinit u32 passed = 0;
constinit u32 failed = 0;

void runTest(tTest const& test) {
  running = &test;
  runningFailed = false;
  DbgPrint("[oxt] run %s.%s\n", test.suite, test.name);
  test.body();
  if (runningFailed) {
    ++failed;
  } else {
    ++passed;
    DbgPrint("[oxt] ok %s.%s\n", test.suite, test.name);
  }
  running = nullptr;
}

}  // namespace

void runAllTests() {
  // The linker may fill gaps between the parts of the section with zeros. The ends are two objects
  // for the language, so the walk hides from the optimiser where it starts.
  tTest const* const* entry = &firstEntry;
  __asm__ volatile("" : "+r"(entry));
  for (; entry != &lastEntry; ++entry) {
    if (*entry != nullptr) runTest(**entry);
  }
  DbgPrint("[oxt] done %u passed %u failed\n", passed, failed);
}

void reportFailure(tPlace const& place, char const* seen) {
  runningFailed = true;
  DbgPrint("[oxt] FAILED %s.%s %s:%d expected %.120s, seen %.240s\n", running->suite, running->name,
           place.file, place.line, place.expression, seen);
}

}  // namespace oxt
