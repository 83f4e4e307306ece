// The contracts of a component that has them compiled away.

#include "conformance/harness.h"
#include "support/contractStream.h"

#define OXDIAG_CONTRACT_STRIP
#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion()
#include "oxdiagk/contractMacros.h"

namespace {

u32 countUp(u32& counter) {
  return ++counter;
}

char const* countedText(u32& uses) {
  ++uses;
  return "default";
}

template <u32 First, u32 Second>
u32 smaller(u32& uses) {
  ++uses;
  return First < Second ? First : Second;
}

}  // namespace

TEST(ContractMacrosStripped, NothingIsEvaluated) {
  tContractStream stream;
  u32 uses = 0;
  OXDIAG_REQUIRE(countUp(uses) == 0);
  OXDIAG_ENSURE(countUp(uses) == 0);
  OXDIAG_CLASS_INVARIANT(countUp(uses) == 0);
  OXDIAG_LOOP_INVARIANT(countUp(uses) == 0);
  OXDIAG_CHECK(countUp(uses) == 0);
  OXDIAG_EXCEPTION(countUp(uses) == 0);
  OXDIAG_REQUIRE_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_ENSURE_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_CLASS_INVARIANT_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_LOOP_INVARIANT_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_CHECK_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_EXCEPTION_MESSAGE(countUp(uses) == 0, countedText(uses));
  OXDIAG_REQUIRE_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  OXDIAG_ENSURE_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  OXDIAG_CLASS_INVARIANT_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  OXDIAG_LOOP_INVARIANT_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  OXDIAG_CHECK_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  OXDIAG_EXCEPTION_IN(countedText(uses), countUp(uses) == 0, countedText(uses));
  EXPECT_EQ(u32{0}, uses);
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(ContractMacrosStripped, AConditionMayStillHoldCommasOfTemplateArguments) {
  u32 uses = 0;
  OXDIAG_REQUIRE(smaller<1, 2>(uses) == 7);
  OXDIAG_REQUIRE_MESSAGE((smaller<1, 2>(uses) == 7), nullptr);
  EXPECT_EQ(u32{0}, uses);
}

TEST(ContractMacrosStripped, AContractIsStillOneStatement) {
  u32 others = 0;
  for (u32 count = 0; count < 3; ++count)
    if (count == 1)
      OXDIAG_REQUIRE(count == 0);
    else
      ++others;
  EXPECT_EQ(u32{2}, others);
}
