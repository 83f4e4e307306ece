#pragma once

// The checks behind the macros. Each returns whether it held and reports if it did not.

#include "conformance/testRun.h"
#include "conformance/valueText.h"

namespace oxt {

// A relation compares as the language does, mixed signs included, like the host's harness.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wsign-compare"
#define OXT_RELATION_KIND(kind, operation)      \
  struct kind {                                 \
    template <class A, class B>                 \
    static bool holds(A const& a, B const& b) { \
      return static_cast<bool>(a operation b);  \
    }                                           \
  };
OXT_RELATION_KIND(tEqual, ==)
OXT_RELATION_KIND(tUnequal, !=)
OXT_RELATION_KIND(tLess, <)
OXT_RELATION_KIND(tLessOrEqual, <=)
OXT_RELATION_KIND(tGreater, >)
OXT_RELATION_KIND(tGreaterOrEqual, >=)
#undef OXT_RELATION_KIND
#pragma clang diagnostic pop

template <class Kind, class A, class B>
bool checkRelation(tPlace const& place, A const& a, B const& b) {
  if (Kind::holds(a, b)) return true;
  tValueText seen;
  describe(seen, a);
  seen.append(" and ");
  describe(seen, b);
  reportFailure(place, seen.text());
  return false;
}

bool checkTruth(tPlace const& place, bool condition, bool wanted);

// Equal texts, or both null, when `wanted` is true; the opposite when it is false.
bool checkText(tPlace const& place, char const* a, char const* b, bool wanted);

}  // namespace oxt
