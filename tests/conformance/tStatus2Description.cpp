// The description of a status.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

constexpr char kPlainCodeText[] =
    "Status set in code using legacy interface, stack trace reflects where the code exited the "
    "interface";

}  // namespace

TEST(StatusDescription, IsAttachedByTheMacro) {
  tOrigin const origin("slotbus", "rack.cpp");
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_EQ(numberOf(status.getDescription()), 42);
  EXPECT_GE(countAddresses(status), u32{3});
  EXPECT_STREQ(status.getFileName(), "rack.cpp");
}

TEST(StatusDescription, IsAttachedByTheMacroWithoutStackTraceToo) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status, kError, description);
  EXPECT_EQ(numberOf(status.getDescription()), 42);
  EXPECT_EQ(countAddresses(status), u32{0});
}

TEST(StatusDescription, IsACloneOfTheCallersOne) {
  tTestDescription description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  description.number = 43;
  EXPECT_TRUE(status.getDescription() != &description);
  EXPECT_EQ(numberOf(status.getDescription()), 42);
}

TEST(StatusDescription, IsDestroyedWithTheLastStatus) {
  i32 const before = tTestDescription::living;
  {
    tTestDescription const description(42);
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
    tStatus2 const copy(status);
    status.setCode(0);
    EXPECT_EQ(tTestDescription::living, before + 2);
  }
  EXPECT_EQ(tTestDescription::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusDescription, IsClonedWithACleanStatus) {
  tTestDescription const description(42);
  tTestDescription::lastCloneStatus = -1;
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_EQ(tTestDescription::lastCloneStatus, 0);
}

TEST(StatusDescription, ThatCannotBeClonedLeavesTheDetailWithoutOne) {
  tTestDescription const description(42);
  tCloningScope const failing(tTestDescription::kFailing);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_TRUE(status.getDescription() == nullptr);
}

TEST(StatusDescription, ThatCannotBeClonedDoesNotTurnAWarningIntoAnError) {
  tTestDescription const description(42);
  tCloningScope const failing(tTestDescription::kFailing);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kWarning, description);
  EXPECT_EQ(status.getCode(), kWarning);
  EXPECT_TRUE(status.hasDetail());
}

TEST(StatusDescription, WhoseCloneIsNoDescriptionIsNotAttached) {
  tTestDescription const description(42);
  tCloningScope const foreign(tTestDescription::kYieldingForeign);
  i32 const before = tForeignObject::living;
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  EXPECT_TRUE(status.hasDetail());
  EXPECT_TRUE(status.getDescription() == nullptr);
  EXPECT_EQ(tForeignObject::living, before);
}

TEST(StatusDescription, WhoseCloningWarnsIsAttached) {
  tTestDescription const description(42);
  tCloningScope const warning(tTestDescription::kYieldingAndWarns);
  tStatus2 status(kError);
  EXPECT_EQ(status.setDescription(description), u32{1});
  EXPECT_EQ(numberOf(status.getDescription()), 42);
}

TEST(StatusDescription, IsAttachedLater) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  EXPECT_EQ(status.setDescription(description), u32{1});
  EXPECT_EQ(numberOf(status.getDescription()), 42);
  EXPECT_EQ(status.getCode(), kError);
}

TEST(StatusDescription, IsNotAttachedToASuccess) {
  tTestDescription const description(42);
  tStatus2 status;
  EXPECT_EQ(status.setDescription(description), u32{0});
  EXPECT_FALSE(status.hasDetail());
  EXPECT_EQ(status.getCode(), 0);
}

TEST(StatusDescription, IsAttachedToAWarning) {
  tTestDescription const description(42);
  tStatus2 status(kWarning);
  EXPECT_EQ(status.setDescription(description), u32{1});
  EXPECT_EQ(status.getCode(), kWarning);
}

TEST(StatusDescription, TheFirstOneStays) {
  tTestDescription const first(42);
  tTestDescription const second(43);
  tStatus2 status(kError);
  EXPECT_EQ(status.setDescription(first), u32{1});
  EXPECT_EQ(status.setDescription(second), u32{0});
  EXPECT_EQ(numberOf(status.getDescription()), 42);
}

TEST(StatusDescription, OfTheMacroStays) {
  tTestDescription const first(42);
  tTestDescription const second(43);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, first);
  EXPECT_EQ(status.setDescription(second), u32{0});
  EXPECT_EQ(numberOf(status.getDescription()), 42);
}

TEST(StatusDescription, OfAPlainCodeMakesADetailThatSaysSo) {
  tTestDescription const description(42);
  tStatus2 status(kError);
  EXPECT_EQ(status.setDescription(description), u32{1});
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_STREQ(status.getComponentName(), "");
  EXPECT_STREQ(status.getFileName(), kPlainCodeText);
  EXPECT_EQ(status.getLineNumber(), u32{0});
  EXPECT_GE(countAddresses(status), u32{3});
}

TEST(StatusDescription, ReportsOneOnlyWhenItIsAttached) {
  tTestDescription const description(42);
  tStatus2 plain(kError);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  for (u32 way = tTestDescription::kFailing; way <= tTestDescription::kYieldingForeign; ++way) {
    tCloningScope const failing(static_cast<tTestDescription::tCloning>(way));
    EXPECT_EQ(plain.setDescription(description), u32{0});
    EXPECT_EQ(status.setDescription(description), u32{0});
  }
  EXPECT_TRUE(plain.hasDetail());
  EXPECT_EQ(plain.setDescription(description), u32{1});
  EXPECT_EQ(status.setDescription(description), u32{1});
}

TEST(StatusDescription, IsSeenInEveryCopy) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS(status, kError);
  tStatus2 const copy(status);
  status.setDescription(description);
  EXPECT_TRUE(copy.getDescription() == status.getDescription());
  EXPECT_EQ(numberOf(copy.getDescription()), 42);
}

TEST(StatusDescription, MayBeTheOneOfTheStatusThatIsSetAnew) {
  tTestDescription const description(42);
  tStatus2 status;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kWarning, description);
  ASSERT_NE(status.getDescription(), nullptr);
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, *status.getDescription());
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_EQ(numberOf(status.getDescription()), 42);
}

TEST(StatusDescription, GoesWithTheDetailOfAnotherCode) {
  i32 const before = tTestDescription::living;
  {
    tTestDescription const description(42);
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kWarning, description);
    OXDIAG_SET_STATUS(status, kError);
    EXPECT_TRUE(status.getDescription() == nullptr);
    EXPECT_EQ(tTestDescription::living, before + 1);
  }
  EXPECT_EQ(tTestDescription::living, before);
}
