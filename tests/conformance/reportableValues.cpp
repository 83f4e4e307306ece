// What reportables are made of, and what they tell of it.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"

namespace {

using namespace nOXDIAG100;

}  // namespace

TEST(ReportableValues, OfTheStatusFormAreNone) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    tStatus2 status(kError);
    tReportable const reportable(status);
    EXPECT_EQ(status.getCode(), kError);
    status.setCode(0);
    EXPECT_EQ(reportable.isEquivalent(tReportable(), status), u32{1});
  });
}

TEST(ReportableValues, AreNotTakenAfterAnError) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    tStatus2 status(kError);
    auto const reportable = tSample<tReportable>::one(status);
    EXPECT_EQ(status.getCode(), kError);
    EXPECT_FALSE(reportable.hasFailed());
    status.setCode(0);
    EXPECT_EQ(reportable.isEquivalent(tReportable(), status), u32{1});
  });
}

TEST(ReportableValues, AnIdBesideAListIsNotTakenAfterAnErrorEither) {
  tStatus2 status(kError);
  tEnumPropertyReportable const one(7, 8, status);
  tEnumPropertyReportable const several(7, listOf<i32>(8, 9), status);
  EXPECT_EQ(one.getPropertyID(status), tEnumPropertyReportable().getPropertyID(status));
  EXPECT_EQ(several.getPropertyID(status), tEnumPropertyReportable().getPropertyID(status));
}

TEST(ReportableValues, AreTakenWithAWarning) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    tStatus2 status(kWarning);
    auto const reportable = tSample<tReportable>::one(status);
    EXPECT_EQ(status.getCode(), kWarning);
    EXPECT_EQ(reportable.isEquivalent(tag.one(), status), u32{1});
  });
}

TEST(ReportableValues, OneValueIsAListOfOne) {
  tStatus2 status;
  EXPECT_EQ(tPropertyIDReportable(5, status).getData(status).size(), size_t{1});
  EXPECT_EQ(tPropertyIDReportable(5, status).getData(status)[0], 5);
  EXPECT_TRUE(tGUIDReportable(kFirstGUID, status).getGUIDs(status)[0] == kFirstGUID);
  tSSTimeAbsoluteReportable const time(timeOf(1, 2, 3, 4), status);
  EXPECT_TRUE(time.getAbsoluteTimes(status)[0] == timeOf(1, 2, 3, 4));
  EXPECT_EQ(time.getAbsoluteTimes(status).size(), size_t{1});
}

TEST(ReportableValues, KeepTheirOrderAndEqualOnes) {
  tStatus2 status;
  _STL::vector<i32> ids = listOf<i32>(9, -9);
  ids.push_back(9);
  tPropertyIDReportable const properties(ids, status);
  EXPECT_TRUE(properties.getData(status) == ids);
  EXPECT_TRUE(&properties.getData(status) == &properties.getData(status));
}

TEST(ReportableValues, AreACopyOfTheCallersList) {
  tStatus2 status;
  _STL::vector<i32> ids = listOf<i32>(1, 2);
  tPropertyIDReportable const properties(ids, status);
  ids[0] = 3;
  EXPECT_EQ(properties.getData(status)[0], 1);
}

TEST(ReportableValues, OfAPropertyAreItsIdAndTheList) {
  tStatus2 status;
  tEnumPropertyReportable const one(7, 3, status);
  EXPECT_EQ(one.getPropertyID(status), 7);
  EXPECT_EQ(one.getPropertyValues(status).size(), size_t{1});
  EXPECT_EQ(one.getPropertyValues(status)[0], 3);
  tEnumPropertyReportable const two(7, listOf<i32>(3, 4), status);
  EXPECT_TRUE(two.getPropertyValues(status) == listOf<i32>(3, 4));
  EXPECT_EQ(tEnumPropertyReportable().getPropertyID(status), 0);
  EXPECT_EQ(tEnumPropertyReportable(7, _STL::vector<i32>(), status).getPropertyID(status), 7);
}

TEST(ReportableValues, OfAProxyAreTheIdsAndTheLookupClass) {
  tStatus2 status;
  tStringProxyReportable const one(3, "tTexts", status);
  EXPECT_EQ(one.getStringIDs(status)[0], 3);
  EXPECT_TRUE(one.getLookupClassName(status) == "tTexts");
  tStringProxyReportable const two(listOf<i32>(3, 4), _STL::string("tTexts"), status);
  EXPECT_TRUE(two.getStringIDs(status) == listOf<i32>(3, 4));
  EXPECT_TRUE(two.getLookupClassName(status) == "tTexts");
  tStringProxyReportable const third(3, _STL::string("tTexts"), status);
  EXPECT_EQ(third.isEquivalent(one, status), u32{1});
}

TEST(ReportableValues, ALookupClassOfNullIsAnEmptyName) {
  tStatus2 status;
  char const* const none = nullptr;
  EXPECT_TRUE(tStringProxyReportable(3, none, status).getLookupClassName(status).empty());
  EXPECT_EQ(status.getCode(), 0);
}

TEST(ReportableValues, MayBeAnEmptyList) {
  tStatus2 status;
  tGUIDReportable const guids(_STL::vector<nQELM100::tGUID>(), status);
  EXPECT_TRUE(guids.getGUIDs(status).empty());
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_FALSE(guids.hasFailed());
}

TEST(ReportableValues, AreToldWhateverTheStatusHolds) {
  tStatus2 clean;
  tPropertyIDReportable const properties(5, clean);
  tStatus2 status(kError);
  EXPECT_EQ(properties.getData(status)[0], 5);
  EXPECT_EQ(status.getCode(), kError);
}
