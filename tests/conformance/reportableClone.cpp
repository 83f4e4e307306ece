// Reportables as objects of the framework: names, casts, copies and clones.

#include "conformance/harness.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tClass.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"

namespace {

using namespace nOXDIAG100;
using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::tClass;
using nQELM100::tObject;

void destroyCopy(tObject* object) {
  i32 status = 0;
  object->getClass(status).deleteInstance(object, status);
  EXPECT_EQ(status, 0);
}

template <class T>
bool isEquivalent(T const& one, T const& other) {
  tStatus2 status;
  return one.isEquivalent(other, status) == 1 && status.getCode() == 0;
}

}  // namespace

TEST(ReportableClass, IsFoundByItsName) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    char const* const name = tSample<tReportable>::kName;
    i32 status = 0;
    EXPECT_STREQ(tReportable::staticGetClass(status).getName(), name);
    EXPECT_TRUE(tClass::forName(name, status) == tReportable::staticGetClass(status));
    EXPECT_EQ(status, 0);
  });
}

TEST(ReportableClass, HasTheDocumentedNames) {
  i32 status = 0;
  EXPECT_STREQ(tIntrinsicTypeReportable<i32>::staticGetClass(status).getName(),
               "nOXDIAG100::tIntrinsicTypeReportable<i32>");
  EXPECT_STREQ(tIntrinsicTypeReportable<u32>::staticGetClass(status).getName(),
               "nOXDIAG100::tIntrinsicTypeReportable<u32>");
  EXPECT_STREQ(tIntrinsicTypeReportable<i64>::staticGetClass(status).getName(),
               "nOXDIAG100::tIntrinsicTypeReportable<i64>");
  EXPECT_STREQ(tIntrinsicTypeReportable<u64>::staticGetClass(status).getName(),
               "nOXDIAG100::tIntrinsicTypeReportable<u64>");
  EXPECT_STREQ(tIntrinsicTypeReportable<_STL::wstring>::staticGetClass(status).getName(),
               "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>");
  EXPECT_STREQ(tBoundedRangeReportable<i32>::staticGetClass(status).getName(),
               "nOXDIAG100::tBoundedRangeReportable<i32>");
  EXPECT_STREQ(tBoundedRangeReportable<u32>::staticGetClass(status).getName(),
               "nOXDIAG100::tBoundedRangeReportable<u32>");
  EXPECT_STREQ(tBoundedRangeReportable<i64>::staticGetClass(status).getName(),
               "nOXDIAG100::tBoundedRangeReportable<i64>");
  EXPECT_STREQ(tBoundedRangeReportable<u64>::staticGetClass(status).getName(),
               "nOXDIAG100::tBoundedRangeReportable<u64>");
}

TEST(ReportableClass, MakesAnObjectWithoutValues) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    i32 status = 0;
    tObject* const object = tReportable::staticGetClass(status).newInstance(status);
    ASSERT_TRUE(dynamicCast<tReportable>(object) != nullptr);
    EXPECT_TRUE(isEquivalent(*dynamicCast<tReportable>(object), tReportable()));
    destroyCopy(object);
  });
}

TEST(ReportableClass, IsSeenAsAllItsFaces) {
  visitReportables([](auto tag) {
    auto reportable = tag.one();
    using tReportable = typename decltype(tag)::tReportable;
    tObject& object = reportable;
    tObject const& constant = reportable;
    EXPECT_TRUE(dynamicCast<tReportable>(&object) == &reportable);
    EXPECT_TRUE(dynamicCast<tReportable>(&constant) == &reportable);
    EXPECT_TRUE(dynamicCast<iVariantReportable>(&object) == &reportable);
    EXPECT_TRUE(dynamicCast<iCloneable>(&object) == static_cast<iCloneable*>(&reportable));
    EXPECT_TRUE(dynamicCast<nQELM100::iExternalizable>(&constant) != nullptr);
    EXPECT_TRUE(dynamicCast<nQELM100::iCloneableExternalizable>(&constant) != nullptr);
    EXPECT_TRUE(&reportable.___QELMGetTObject() == &object);
  });
}

TEST(ReportableClone, IsAnotherObjectOfTheSameClassAndValues) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    auto const original = tag.one();
    i32 status = kWarning;
    iCloneable* const clone = original.clone(status);
    auto* const copy = dynamicCast<tReportable>(clone);
    ASSERT_TRUE(copy != nullptr);
    EXPECT_TRUE(copy != &original);
    EXPECT_TRUE(clone->getClass(status) == original.getClass(status));
    EXPECT_TRUE(isEquivalent(original, *copy));
    EXPECT_EQ(status, kWarning);
    destroyCopy(clone);
  });
}

TEST(ReportableClone, OutlivesAndIgnoresItsOriginal) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    i32 status = 0;
    iCloneable* clone = nullptr;
    {
      auto original = tag.one();
      clone = original.clone(status);
      original = tag.other();
    }
    ASSERT_TRUE(clone != nullptr);
    EXPECT_TRUE(isEquivalent(*dynamicCast<tReportable>(clone), tag.one()));
    destroyCopy(clone);
  });
}

TEST(ReportableClone, IsNotMadeAfterAnError) {
  visitReportables([](auto tag) {
    i32 status = kError;
    EXPECT_TRUE(tag.one().clone(status) == nullptr);
    EXPECT_EQ(status, kError);
  });
}

TEST(ReportableCopy, HasTheValuesAndIsIndependent) {
  visitReportables([](auto tag) {
    auto original = tag.one();
    auto const copy = original;
    original = tag.other();
    EXPECT_TRUE(isEquivalent(copy, tag.one()));
    EXPECT_TRUE(isEquivalent(original, tag.other()));
    EXPECT_FALSE(copy.hasFailed());
  });
}

TEST(ReportableCopy, AssignedToItselfKeepsItsValues) {
  visitReportables([](auto tag) {
    auto reportable = tag.one();
    auto const& itself = reportable;
    reportable = itself;
    EXPECT_TRUE(isEquivalent(reportable, tag.one()));
    EXPECT_FALSE(reportable.hasFailed());
  });
}

TEST(ReportableCopy, OfTheTObjectPartKeepsTheValues) {
  visitReportables([](auto tag) {
    auto one = tag.one();
    auto other = tag.other();
    tObject& part = one;
    part = static_cast<tObject const&>(other);
    EXPECT_TRUE(isEquivalent(one, tag.one()));
  });
}
