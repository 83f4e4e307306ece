// The macros that set a status.

#define OXDIAG_COMPONENT "macroTests"

#include "oxdiagk/statusMacros.h"

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/tTestDescription.h"

using nOXDIAG100::iStatus2Description;
using nOXDIAG100::tStatus2;

namespace {

constexpr i32 kOtherError = -61008;
constexpr i32 kOtherWarning = 61002;

enum tCodes : i32 { kEnumerated = -61009 };

struct tCounted {
  u32 statusCount = 0;
  u32 codeCount = 0;
  u32 descriptionCount = 0;
  tStatus2 value;
  tTestDescription description{42};

  tStatus2& status() {
    ++statusCount;
    return value;
  }
  i32 code(i32 result) {
    ++codeCount;
    return result;
  }
  iStatus2Description const& describe() {
    ++descriptionCount;
    return description;
  }
};

i32 codeAfter(i32 first, i32 second) {
  tStatus2 status(first);
  OXDIAG_SET_STATUS(status, second);
  return status.getCode();
}

bool endsWith(char const* text, char const* end) {
  size_t const length = __builtin_strlen(text);
  size_t const endLength = __builtin_strlen(end);
  return length >= endLength && __builtin_strcmp(text + length - endLength, end) == 0;
}

}  // namespace

TEST(StatusMacros, RecordComponentFileAndLine) {
  tStatus2 status;
  u32 const line = __LINE__ + 1;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_STREQ(status.getComponentName(), "macroTests");
  EXPECT_TRUE(endsWith(status.getFileName(), "statusMacros.cpp"));
  EXPECT_EQ(status.getLineNumber(), line);
}

TEST(StatusMacros, TheFirstErrorWins) {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  u32 const line = status.getLineNumber();
  OXDIAG_SET_STATUS(status, kOtherError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_EQ(status.getLineNumber(), line);
}

TEST(StatusMacros, APlainErrorStaysWithoutOrigin) {
  tStatus2 status(kError);
  OXDIAG_SET_STATUS(status, kOtherError);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_FALSE(status.hasDetail());
}

TEST(StatusMacros, AWarningGivesWayToAnErrorOnly) {
  EXPECT_EQ(codeAfter(kWarning, kError), kError);
  EXPECT_EQ(codeAfter(kWarning, kOtherWarning), kWarning);
  EXPECT_EQ(codeAfter(kWarning, 0), kWarning);
}

TEST(StatusMacros, ASuccessGivesWayToEverything) {
  EXPECT_EQ(codeAfter(0, kError), kError);
  EXPECT_EQ(codeAfter(0, kWarning), kWarning);
  EXPECT_EQ(codeAfter(0, 0), 0);
}

TEST(StatusMacros, AnErrorGivesWayToNothing) {
  EXPECT_EQ(codeAfter(kError, kWarning), kError);
  EXPECT_EQ(codeAfter(kError, 0), kError);
  EXPECT_EQ(codeAfter(-2147483647 - 1, -1), -2147483647 - 1);
}

TEST(StatusMacros, SuccessTakesNothingFromTheHeap) {
  tStatus2 status;
  tTestDescription const description(42);
  OXDIAG_SET_STATUS(status, 0);
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, 0);
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, 0, description);
  OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status, 0, description);
  EXPECT_FALSE(status.hasDetail());
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusMacros, EvaluateTheirArgumentsOnceWhenTheCodeIsTaken) {
  tCounted counted;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(counted.status(), counted.code(kError), counted.describe());
  EXPECT_EQ(counted.statusCount, u32{1});
  EXPECT_EQ(counted.codeCount, u32{1});
  EXPECT_EQ(counted.descriptionCount, u32{1});
  EXPECT_EQ(numberOf(counted.value.getDescription()), 42);
}

TEST(StatusMacros, EvaluateTheDescriptionNotAtAllWhenTheCodeIsNotTaken) {
  tCounted counted;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(counted.status(), counted.code(0), counted.describe());
  counted.value.setCode(kError);
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(counted.status(), counted.code(kOtherError),
                                     counted.describe());
  EXPECT_EQ(counted.statusCount, u32{2});
  EXPECT_EQ(counted.codeCount, u32{2});
  EXPECT_EQ(counted.descriptionCount, u32{0});
}

TEST(StatusMacros, EvaluateStatusAndCodeOnceInEveryForm) {
  tCounted counted;
  OXDIAG_SET_STATUS(counted.status(), counted.code(kError));
  OXDIAG_SET_STATUS(counted.status(), counted.code(0));
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(counted.status(), counted.code(kOtherError));
  OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(counted.status(), counted.code(0),
                                                         counted.describe());
  EXPECT_EQ(counted.statusCount, u32{4});
  EXPECT_EQ(counted.codeCount, u32{4});
}

TEST(StatusMacros, AreOneStatement) {
  tStatus2 status;
  bool const yes = true;
  if (yes)
    OXDIAG_SET_STATUS(status, kError);
  else
    OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kOtherError);
  EXPECT_EQ(status.getCode(), kError);
  for (u32 i = 0; i != 2; ++i) OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kOtherError);
  EXPECT_EQ(status.getCode(), kError);
}

TEST(StatusMacros, ElseBelongsToTheIfInFrontOfTheMacro) {
  tStatus2 status;
  bool reached = false;
  bool const no = false;
  if (no)
    OXDIAG_SET_STATUS(status, kError);
  else
    reached = true;
  EXPECT_TRUE(reached);
  EXPECT_EQ(status.getCode(), 0);
}

TEST(StatusMacros, TakeExpressionsWithOperatorsAndCommas) {
  tStatus2 status;
  tStatus2* const pointer = &status;
  bool const isBad = true;
  OXDIAG_SET_STATUS(*pointer, isBad ? kError : kOtherError);
  EXPECT_EQ(status.getCode(), kError);
  tStatus2 second;
  OXDIAG_SET_STATUS(second, (static_cast<void>(isBad), kOtherError));
  EXPECT_EQ(second.getCode(), kOtherError);
}

TEST(StatusMacros, TakeEnumeratedCodes) {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kEnumerated);
  EXPECT_EQ(status.getCode(), -61009);
}

namespace shadowed {

// Names that the macros might use, with other meanings.
struct tStatusSetter {};
struct tStatus2 {};
[[maybe_unused]] constexpr i32 status = 1;
[[maybe_unused]] constexpr i32 code = 2;
[[maybe_unused]] constexpr i32 description = 3;
namespace nOXDIAG100 {}

i32 set() {
  ::nOXDIAG100::tStatus2 component;
  ::nOXDIAG100::tStatus2& operation = component;
  i32 const oxdiagStatus = kError;
  OXDIAG_SET_STATUS(operation, oxdiagStatus);
  return component.getCode();
}

}  // namespace shadowed

TEST(StatusMacros, AreNotDisturbedByTheNamesAroundThem) {
  EXPECT_EQ(shadowed::set(), kError);
}
