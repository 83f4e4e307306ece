#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/atomicWord.h"

namespace nOXDIAG100 {

// What a contract keeps of its category from one check to the next: where its switch is, and in
// which life of the module's assertion configuration. Part of the macros in
// "oxdiagk/contractMacros.h", each of which has one in the component's memory.
//
// A category stays where it is as long as the configuration lives, so the switch is found once a
// life, and read at each check. Of a category that does not exist nothing is kept.
//
// Any thread, any IRQL at which the site and the category's name may be accessed.
class tContractSite {
 public:
  enum tKind : u32 { kRequire, kEnsure, kClassInvariant, kLoopInvariant, kCheck, kException };

  constexpr tContractSite() = default;

  // Whether a contract of this kind is to be checked, as evalRequire and its siblings tell.
  // `category` and `kind` are the same at every call.
  bool isChecked(char const* category, tKind kind) {
    u64 const known = loadAcquire(life);
    if (known != loadRelaxed(*loadRelaxed(currentLife))) return find(category, kind);
    return loadRelaxed(*loadRelaxed(isOn));
  }

 private:
  OXDIAG_API bool find(char const* category, tKind kind);

  static constexpr u64 kAnyLife = 1;

  bool const* isOn = nullptr;          // the category's switch
  u64 const* currentLife = &kAnyLife;  // in the library's image, once the switch was found
  u64 life = 0;                        // of the configuration that has it, stored last; 0: none
};

}  // namespace nOXDIAG100
