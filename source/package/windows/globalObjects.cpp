#include "package/windows/globalObjects.h"

#include "oxdiagk/tTrace.h"
#include "package/windows/tTerminatorList.h"
#include "stl/memory.h"

namespace nOXDIAG100 {
namespace {

using tInitialiser = i32 (*)();

// Positions are part of the order in which objects may rely on each other; an entry without an
// object is null and skipped.
constexpr u32 kInitialiserCount = 42;
constexpr u32 kCountEntry = 0;
constexpr u32 kTraceEntry = 41;

constinit tTerminatorList terminators;
constinit u32 initialisationCount = 0;

i32 countInitialisation() {
  ++initialisationCount;
  return 0;
}

i32 initialiseTrace() {
  tTrace::constructInstance();
  i32 const pushed = terminators.push(&tTrace::destroyInstance);
  if (pushed != 0) tTrace::destroyInstance();
  return pushed;
}

struct tInitialiserTable {
  tInitialiser entries[kInitialiserCount] = {};

  constexpr tInitialiserTable() {
    entries[kCountEntry] = &countInitialisation;
    entries[kTraceEntry] = &initialiseTrace;
  }
};

constexpr tInitialiserTable initialisers;

}  // namespace

i32 initialiseGlobals() {
  if (initialisationCount != 0) {
    ++initialisationCount;
    return 0;
  }
  for (tInitialiser initialise : initialisers.entries) {
    if (initialise != nullptr && initialise() != 0) return kStatusOutOfMemory;
  }
  return 0;
}

void terminateGlobals() {
  if (initialisationCount == 1) {
    terminators.runAll();
  } else if (initialisationCount != 0) {
    --initialisationCount;
  }
}

}  // namespace nOXDIAG100
