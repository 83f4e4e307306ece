#pragma once

// What reportables of every class share, also those of a client: failures, comparison, cloning.
//
// Nothing here locks or keeps an argument. Objects and statuses stay the caller's; the clone that
// cloneReportable returns belongs to the caller, who destroys it through its class
// (nQELM100::destroyThroughClass). Any thread, as long as no other one changes the objects or the
// status meanwhile. IRQL <= APC_LEVEL: a failure takes its detail from the status heap.

#include "compiler/compiler.h"
#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/iVariantReportable.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/ownedObjects.h"
#include "qelmk/statusCodes.h"
#include "stl/memory.h"

namespace nOXDIAG100 {

class tStatus2;

// Where a reportable records its failures: a source tag instead of a file name, such as
// "source/status/tGUIDReportable", which lives as long as the module, and the line that says so.
struct tReportableSource {
  constexpr tReportableSource(char const* sourceTag, u32 sourceLine = COMPILER_CALLER_LINE)
      : tag(sourceTag), line(sourceLine) {}

  char const* tag;
  u32 line;
};

// Sets `status` to `code` under the component name "oxdiagk", as OXDIAG_SET_STATUS does.
OXDIAG_API void recordReportableFailure(tStatus2& status, i32 code,
                                        tReportableSource const& source);

// 1 when both are of one class, else 0.
OXDIAG_API u32 areOfOneClass(iVariantReportable const& one, iVariantReportable const& other);

// 1 when `status` holds an error.
OXDIAG_API u32 holdsError(tStatus2 const& status);

// `other` as the T that `self` is. Null when it is of another class or `status` holds an error on
// entry; null with kStatusClassMismatch when it claims the class of `self`, but is none.
//
//     u32 tMine::isEquivalent(iVariantReportable const& other, tStatus2& status) const {
//       auto const* const match = castToClassOf(*this, other, status, kSource);
//       return match != nullptr && match->values == values;
//     }
template <class T>
T const* castToClassOf(T const& self, iVariantReportable const& other, tStatus2& status,
                       tReportableSource const& source) {
  if (holdsError(status) || !areOfOneClass(self, other)) return nullptr;
  auto const* const match = nQELM100::dynamicCast<T>(&other);
  if (match == nullptr) {
    recordReportableFailure(status, nQELM100::kStatusClassMismatch, source);
  }
  return match;
}

// The clone of a reportable that is copied by operator= and tells by hasFailed whether it was.
// Null when `status` is negative on entry, and null with the reason in it: kStatusClassMismatch
// when no T can be made, also for want of memory; kStatusOutOfMemory when its values cannot be
// copied.
template <class T>
nQELM100::iCloneable* cloneReportable(T const& original, i32& status) {
  T* const copy = nQELM100::makeObject<T>(status);
  if (copy == nullptr) return nullptr;
  *copy = original;
  if (!copy->hasFailed()) return copy;
  nQELM100::destroyThroughClass(copy);
  nQELM100::mergeStatus(status, kStatusOutOfMemory);
  return nullptr;
}

}  // namespace nOXDIAG100
