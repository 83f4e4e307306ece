#include "conformance/checks.h"

namespace oxt {
namespace {

bool isSameText(char const* a, char const* b) {
  if (a == nullptr || b == nullptr) return a == b;
  for (; *a == *b; ++a, ++b) {
    if (*a == '\0') return true;
  }
  return false;
}

}  // namespace

bool checkTruth(tPlace const& place, bool condition, bool wanted) {
  if (condition == wanted) return true;
  reportFailure(place, condition ? "true" : "false");
  return false;
}

bool checkText(tPlace const& place, char const* a, char const* b, bool wanted) {
  if (isSameText(a, b) == wanted) return true;
  tValueText seen;
  describe(seen, a);
  seen.append(" and ");
  describe(seen, b);
  reportFailure(place, seen.text());
  return false;
}

}  // namespace oxt
