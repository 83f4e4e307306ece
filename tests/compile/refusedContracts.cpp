// A contract has one condition, which is an expression, and a text as its message.

#define OXDIAG_COMPONENT "refused"
#define OXDIAG_COMPONENT_VERSION tSSVersion()

#include "oxdiagk/contractMacros.h"

template <int First, int Second>
bool isLess() {
  return First < Second;
}

void contracts(bool first, bool second, int number) {
  OXDIAG_REQUIRE(isLess<1, 2>());
  OXDIAG_REQUIRE_MESSAGE((isLess<1, 2>()), "message");
  OXDIAG_REQUIRE(first, second);                // expect-error: excess elements
  OXDIAG_REQUIRE(bool const isOn = first);      // expect-error: expected
  OXDIAG_REQUIRE_MESSAGE(first, number);        // expect-error: char
  OXDIAG_REQUIRE_IN(number, first, "message");  // expect-error: no matching
}
