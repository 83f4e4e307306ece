#pragma once

// The registered classes, by name.

#include "ntos/fastMutex.h"
#include "qelmk/tClassImplementation.h"

namespace nQELM100 {

// A search tree over the bits of the hashes of names, the lowest bit first: whatever stands below a
// record's child 1 has a 1 where the way forks, and the record itself may be any of what is below
// its place. So nothing is ever balanced, a record is taken out by any leaf below it, and the way
// to a name is as long as the names are many in logarithm. The links are in the records.
//
// Guarded by a fast mutex: IRQL <= APC_LEVEL.
class tClassRegistry {
 public:
  constexpr tClassRegistry() = default;

  // Makes the guard ready. Classes that are registered stay so.
  void initialise();

  // As registerClass and unregisterClass.
  void add(tClassImplementation& record, i32& status);
  void remove(tClassImplementation& record);

  // The class of this name, or null. The name may hold any bytes.
  tClassImplementation const* find(char const* name, size_t length);

  // How many classes have been taken out so far: as long as this stays, a class that was found is
  // there. Any IRQL.
  u64 getRemovals() const { return __atomic_load_n(&removals, __ATOMIC_ACQUIRE); }

 private:
  tClassImplementation** findPlace(char const* name, size_t length, u64 hash);
  static tClassImplementation& takeLeaf(tClassImplementation& record);

  FAST_MUTEX guard{};
  bool isReady = false;
  tClassImplementation* root = nullptr;
  u64 removals = 0;
};

extern tClassRegistry qelmkClasses;

}  // namespace nQELM100
