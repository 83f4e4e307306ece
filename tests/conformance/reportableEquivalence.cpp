// When two reportables are equivalent.

#include "conformance/harness.h"
#include "oxdiagk/reportableClass.h"
#include "qelmk/tClass.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"

namespace {

using namespace nOXDIAG100;
using nQELM100::tClass;

u32 answer(iVariantReportable const& one, iVariantReportable const& other, i32& code) {
  tStatus2 status(code);
  u32 const isEquivalent = one.isEquivalent(other, status);
  code = status.getCode();
  return isEquivalent;
}

// Claims the class of property ids, but cannot be cast to it.
class tImpostor : public tWhiteSpaceReportable {
 public:
  tClass getClass(i32& status) const override {
    return tPropertyIDReportable::staticGetClass(status);
  }
  void const* ___CPPKRLDynamicCast(void* const* const) const override { return nullptr; }
  void* ___CPPKRLDynamicCast(void* const* const) override { return nullptr; }
};

class tClassless : public tTitleReportable {
 public:
  tClass getClass(i32&) const override { return tClass(); }
};

}  // namespace

TEST(ReportableEquivalence, EqualValuesAreEquivalent) {
  visitReportables([](auto tag) {
    auto const one = tag.one();
    auto const same = tag.one();
    i32 code = 0;
    EXPECT_EQ(answer(one, same, code), u32{1});
    EXPECT_EQ(answer(one, one, code), u32{1});
    EXPECT_EQ(code, 0);
  });
}

TEST(ReportableEquivalence, OtherValuesOrAnotherOrderAreNot) {
  visitReportables([](auto tag) {
    auto const one = tag.one();
    auto const other = tag.other();
    i32 code = 0;
    bool const hasValues = tSample<typename decltype(tag)::tReportable>::kHasValues;
    EXPECT_EQ(answer(one, other, code), hasValues ? u32{0} : u32{1});
    EXPECT_EQ(code, 0);
  });
}

TEST(ReportableEquivalence, ReportablesWithoutValuesAreEquivalent) {
  visitReportables([](auto tag) {
    typename decltype(tag)::tReportable const one;
    typename decltype(tag)::tReportable const same;
    i32 code = 0;
    EXPECT_EQ(answer(one, same, code), u32{1});
  });
}

TEST(ReportableEquivalence, NoClassIsEquivalentToAnother) {
  visitReportables([](auto oneTag) {
    visitReportables([](auto otherTag) {
      using tOne = typename decltype(oneTag)::tReportable;
      using tOther = typename decltype(otherTag)::tReportable;
      tOne const one;
      tOther const other;
      i32 code = 0;
      EXPECT_EQ(answer(one, other, code), __is_same(tOne, tOther) ? u32{1} : u32{0});
      EXPECT_EQ(code, 0);
    });
  });
}

TEST(ReportableEquivalence, NumbersAndPropertiesWithTheSameValuesAreNot) {
  tStatus2 status;
  tIntrinsicTypeReportable<i32> const numbers(listOf<i32>(1, 2), status);
  tPropertyIDReportable const properties(listOf<i32>(1, 2), status);
  EXPECT_EQ(numbers.isEquivalent(properties, status), u32{0});
  EXPECT_EQ(properties.isEquivalent(numbers, status), u32{0});
  EXPECT_EQ(status.getCode(), 0);
}

TEST(ReportableEquivalence, AShorterListIsNot) {
  tStatus2 status;
  tPropertyIDReportable const one(1, status);
  tPropertyIDReportable const two(listOf<i32>(1, 2), status);
  EXPECT_EQ(one.isEquivalent(two, status), u32{0});
  EXPECT_EQ(two.isEquivalent(one, status), u32{0});
}

TEST(ReportableEquivalence, BothBoundsOfARangeCount) {
  tStatus2 status;
  tBoundedRangeReportable<u64> const range(1, 9, status);
  EXPECT_EQ(range.isEquivalent(tBoundedRangeReportable<u64>(1, 8, status), status), u32{0});
  EXPECT_EQ(range.isEquivalent(tBoundedRangeReportable<u64>(2, 9, status), status), u32{0});
  EXPECT_EQ(range.isEquivalent(tBoundedRangeReportable<u64>(1, 9, status), status), u32{1});
}

TEST(ReportableEquivalence, ThePropertyAndItsValuesCount) {
  tStatus2 status;
  tEnumPropertyReportable const property(7, 3, status);
  EXPECT_EQ(property.isEquivalent(tEnumPropertyReportable(7, 4, status), status), u32{0});
  EXPECT_EQ(property.isEquivalent(tEnumPropertyReportable(8, 3, status), status), u32{0});
  EXPECT_EQ(property.isEquivalent(tEnumPropertyReportable(7, 3, status), status), u32{1});
}

TEST(ReportableEquivalence, TheLookupClassCountsByLengthAndByte) {
  tStatus2 status;
  tStringProxyReportable const proxy(3, "tTexts", status);
  EXPECT_EQ(proxy.isEquivalent(tStringProxyReportable(3, "tText", status), status), u32{0});
  EXPECT_EQ(proxy.isEquivalent(tStringProxyReportable(3, "tTexte", status), status), u32{0});
  EXPECT_EQ(proxy.isEquivalent(tStringProxyReportable(4, "tTexts", status), status), u32{0});
  EXPECT_EQ(proxy.isEquivalent(tStringProxyReportable(3, "tTexts", status), status), u32{1});
}

TEST(ReportableEquivalence, AfterAnErrorOnlyMarkersAnswer) {
  visitReportables([](auto tag) {
    auto const one = tag.one();
    i32 code = kError;
    bool const hasValues = tSample<typename decltype(tag)::tReportable>::kHasValues;
    EXPECT_EQ(answer(one, one, code), hasValues ? u32{0} : u32{1});
    EXPECT_EQ(code, kError);
  });
}

TEST(ReportableEquivalence, AWarningIsKept) {
  visitReportables([](auto tag) {
    auto const one = tag.one();
    i32 code = kWarning;
    EXPECT_EQ(answer(one, one, code), u32{1});
    EXPECT_EQ(code, kWarning);
  });
}

TEST(ReportableEquivalence, AnObjectThatOnlyClaimsTheClassIsAMismatch) {
  tStatus2 status;
  tPropertyIDReportable const properties(1, status);
  tImpostor const impostor;
  EXPECT_EQ(properties.isEquivalent(impostor, status), u32{0});
  EXPECT_EQ(status.getCode(), nQELM100::kStatusClassMismatch);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tPropertyIDReportable");
  EXPECT_TRUE(status.getLineNumber() != 0);
}

TEST(ReportableEquivalence, AMismatchDoesNotReplaceAnError) {
  tStatus2 status;
  tPropertyIDReportable const properties(1, status);
  status.setCode(kError);
  EXPECT_EQ(properties.isEquivalent(tImpostor(), status), u32{0});
  EXPECT_EQ(status.getCode(), kError);
}

TEST(ReportableEquivalence, AMarkerNeedsNoCast) {
  class tFarTitle : public tTitleReportable {
   public:
    void const* ___CPPKRLDynamicCast(void* const* const) const override { return nullptr; }
    void* ___CPPKRLDynamicCast(void* const* const) override { return nullptr; }
  };
  tStatus2 status;
  EXPECT_EQ(tTitleReportable().isEquivalent(tFarTitle(), status), u32{1});
  EXPECT_EQ(status.getCode(), 0);
}

TEST(ReportableEquivalence, WhatHasNoClassIsEquivalentToNothing) {
  tClassless const classless;
  tTitleReportable const title;
  i32 code = 0;
  EXPECT_EQ(answer(title, classless, code), u32{0});
  EXPECT_EQ(answer(classless, title, code), u32{0});
  EXPECT_EQ(answer(classless, classless, code), u32{0});
  EXPECT_EQ(code, 0);
}
