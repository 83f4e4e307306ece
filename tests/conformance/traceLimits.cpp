// Lines of which some are left out.

#include "conformance/harness.h"
#include "support/macroStream.h"

namespace {

using nOXDIAG100::tLineLimit;

struct tLimitedStream : tPrefixedStream {
  tLimitedStream() {
    trace.setMinPrefixWidth(0);
    stream = &trace;
    streamUses = 0;
  }

  char const* text() const { return record.text(); }
};

u32 countUp(u32& counter) {
  return ++counter;
}

// A template with a comma, in a chain.
template <u32 first, u32 second>
u32 sumOf() {
  return first + second;
}

void traceOnce(u32 verbosity, u32 number) {
  OXDIAG_TRACE_ONCE(verbosity, put(number, 10));
}

template <u32 kind>
void traceOnceOfEach() {
  OXDIAG_TRACE_ONCE(100, put(kind, 10));
}

inline void traceThird(u32 number) {
  OXDIAG_TRACE_EVERY(3, 100, put(number, 10).put(" "));
}

void traceAtMost(u32 n, u32 verbosity, u32 number) {
  OXDIAG_TRACE_AT_MOST(n, verbosity, put(number, 10));
}

// Names that the macros might use for themselves.
void traceShadowed(u32 trace, u32 n, u32 rule, u32 limit) {
  OXDIAG_TRACE_ONCE(100, put(trace, 10).put(n, 10));
  OXDIAG_TRACE_EVERY(n, 100, put(rule, 10).put(limit, 10));
  OXDIAG_TRACE_AT_MOST(n, 100, put(limit, 10).put(trace, 10));
}

void traceOfNoConstants(char const* component) {
#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT component
  OXDIAG_TRACE_EVERY(2, 100, put("x"));
#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT "rack"
}

}  // namespace

TEST(TraceLimits, OnceIsTheFirstLineAlone) {
  tLimitedStream limited;
  for (u32 number = 1; number <= 5; ++number) OXDIAG_TRACE_ONCE(100, put(number, 10));
  EXPECT_STREQ(limited.text(), "1\n");
}

TEST(TraceLimits, OnceIsTheFirstLineThatIsShown) {
  tLimitedStream limited;
  traceOnce(99, 1);
  limited.trace.disable();
  traceOnce(100, 2);
  limited.trace.enable();
  traceOnce(100, 3);
  traceOnce(100, 4);
  EXPECT_STREQ(limited.text(), "3\n");
}

TEST(TraceLimits, EachInstanceOfATemplateHasALimitOfItsOwn) {
  tLimitedStream limited;
  for (u32 round = 0; round < 2; ++round) {
    traceOnceOfEach<1>();
    traceOnceOfEach<2>();
  }
  EXPECT_STREQ(limited.text(), "1\n2\n");
}

TEST(TraceLimits, EveryThirdBeginsWithTheFirst) {
  tLimitedStream limited;
  for (u32 number = 1; number <= 8; ++number) traceThird(number);
  EXPECT_STREQ(limited.text(), "1 \n4 \n7 \n");
}

TEST(TraceLimits, EveryFirstIsEachAndEveryNoneIsNone) {
  tLimitedStream limited;
  for (u32 number = 1; number <= 3; ++number) OXDIAG_TRACE_EVERY(1, 100, put(number, 10));
  for (u32 number = 1; number <= 3; ++number) OXDIAG_TRACE_EVERY(0, 100, put(number, 10));
  EXPECT_STREQ(limited.text(), "1\n2\n3\n");
}

TEST(TraceLimits, HiddenLinesDoNotCount) {
  tLimitedStream limited;
  for (u32 number = 0; number < 6; ++number) {
    OXDIAG_TRACE_EVERY(2, number % 2 == 0 ? 99 : 100, put(number, 10));
  }
  EXPECT_STREQ(limited.text(), "1\n5\n");
}

TEST(TraceLimits, LinesThatATermOfTheFilterHidesDoNotCountEither) {
  tLimitedStream limited;
  for (u32 number = 0; number < 4; ++number) {
    limited.trace.configure(number % 2 == 0 ? "--filter compname==other"
                                            : "--filter compname==rack");
    OXDIAG_TRACE_EVERY(2, 100, put(number, 10));
  }
  EXPECT_STREQ(limited.text(), "1\n");
}

TEST(TraceLimits, NoMoreThanNAreShownAtOnce) {
  tLimitedStream limited;
  for (u32 number = 0; number < 100; ++number) traceAtMost(0, 100, number);
  EXPECT_STREQ(limited.text(), "");
  for (u32 number = 0; number < 100; ++number) OXDIAG_TRACE_AT_MOST(4, 99, put(number, 10));
  EXPECT_STREQ(limited.text(), "");
  for (u32 number = 0; number < 3; ++number) OXDIAG_TRACE_AT_MOST(0xFFFFFFFF, 100, put(number, 10));
  EXPECT_STREQ(limited.text(), "0\n1\n2\n");
}

TEST(TraceLimits, WhatIsLeftOutIsNotEvaluated) {
  tLimitedStream limited;
  u32 uses = 0;
  for (u32 number = 0; number < 5; ++number) OXDIAG_TRACE_ONCE(100, put(countUp(uses), 10));
  EXPECT_EQ(uses, u32{1});
  EXPECT_EQ(streamUses, u32{5});
}

TEST(TraceLimits, EveryArgumentIsEvaluatedOnce) {
  tLimitedStream limited;
  u32 limits = 0;
  u32 verbosities = 99;
  u32 values = 0;
  OXDIAG_TRACE_EVERY(countUp(limits), countUp(verbosities), put(countUp(values), 10));
  OXDIAG_TRACE_AT_MOST(countUp(limits), countUp(verbosities), put(countUp(values), 10));
  EXPECT_EQ(limits, u32{2});
  EXPECT_EQ(verbosities, u32{101});
  EXPECT_EQ(values, u32{2});
  EXPECT_EQ(streamUses, u32{2});
}

TEST(TraceLimits, AChainMayContainCommas) {
  tLimitedStream limited;
  OXDIAG_TRACE_ONCE(100, put(sumOf<1, 2>(), 10).putf("%u %u", 4u, 5u));
  OXDIAG_TRACE_EVERY(1, 100, put(sumOf<1, 2>(), 10).putf("%u %u", 4u, 5u));
  OXDIAG_TRACE_AT_MOST(1, 100, put(sumOf<1, 2>(), 10).putf("%u %u", 4u, 5u));
  EXPECT_STREQ(limited.text(), "34 5\n34 5\n34 5\n");
}

TEST(TraceLimits, EachIsOneStatement) {
  tLimitedStream limited;
  for (u32 count = 0; count < 3; ++count)
    if (count == 0)
      OXDIAG_TRACE_ONCE(100, put("once"));
    else if (count == 1)
      OXDIAG_TRACE_EVERY(1, 100, put("every"));
    else
      OXDIAG_TRACE_AT_MOST(1, 100, put("at most"));
  EXPECT_STREQ(limited.text(), "once\nevery\nat most\n");
}

TEST(TraceLimits, ALambdaMayHaveThem) {
  tLimitedStream limited;
  auto const each = [](u32 number) { OXDIAG_TRACE_EVERY(2, 100, put(number, 10)); };
  for (u32 number = 0; number < 4; ++number) each(number);
  EXPECT_STREQ(limited.text(), "0\n2\n");
}

TEST(TraceLimits, NamesOfTheCallerAreNotShadowed) {
  tLimitedStream limited;
  traceShadowed(1, 2, 3, 4);
  EXPECT_STREQ(limited.text(), "12\n34\n41\n");
}

TEST(TraceLimits, TwoOnALineHaveTwoLimits) {
  tLimitedStream limited;
  for (u32 round = 0; round < 2; ++round) {
    // clang-format off
    OXDIAG_TRACE_ONCE(100, put("a")); OXDIAG_TRACE_ONCE(100, put("b"));
    // clang-format on
  }
  EXPECT_STREQ(limited.text(), "a\nb\n");
}

TEST(TraceLimits, AComponentThatIsNoConstantIsLimitedAsWell) {
  tLimitedStream limited;
  limited.showFieldsInFull();
  limited.trace.disableLineNumber();
  traceOfNoConstants("disk");
  traceOfNoConstants("tape");
  traceOfNoConstants("card");
  EXPECT_STREQ(limited.text(), "[disk--port.cpp] x\n[card--port.cpp] x\n");
}

TEST(TraceLimits, APrefixIsThatOfEveryLine) {
  tLimitedStream limited;
  limited.showFieldsInFull();
  limited.trace.disableLineNumber();
  limited.trace.enableVerbosity();
  OXDIAG_TRACE_ONCE(110, put("x"));
  EXPECT_STREQ(limited.text(), "[rack--port.cpp--110] x\n");
}

TEST(TraceLimits, ALimitBeginsASecondWithItsFirstLine) {
  tLineLimit limit;
  u32 leftOut = 77;
  EXPECT_TRUE(limit.admitAt(5000, 2, leftOut));
  EXPECT_TRUE(limit.admitAt(5999, 2, leftOut));
  EXPECT_FALSE(limit.admitAt(5999, 2, leftOut));
  EXPECT_FALSE(limit.admitAt(5999, 2, leftOut));
  EXPECT_EQ(leftOut, u32{77});
  EXPECT_TRUE(limit.admitAt(6000, 2, leftOut));
  EXPECT_EQ(leftOut, u32{2});
  leftOut = 77;
  EXPECT_TRUE(limit.admitAt(6999, 2, leftOut));
  EXPECT_FALSE(limit.admitAt(6999, 2, leftOut));
  EXPECT_EQ(leftOut, u32{77});
}

TEST(TraceLimits, AClockThatWrapsAroundGoesOn) {
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admitAt(0xFFFFFF00, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(0x10, 1, leftOut));
  EXPECT_TRUE(limit.admitAt(0xFFFFFF00u + 1000, 1, leftOut));
  EXPECT_EQ(leftOut, u32{1});
}

TEST(TraceLimits, AClockThatGoesBackByASecondBeginsAnother) {
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admitAt(5000, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(5000, 1, leftOut));
  EXPECT_TRUE(limit.admitAt(4000, 1, leftOut));
  EXPECT_EQ(leftOut, u32{1});
  EXPECT_FALSE(limit.admitAt(4000, 1, leftOut));
}

TEST(TraceLimits, AThreadWithAnOlderTimeBeginsNoSecond) {
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admitAt(5000, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(4999, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(4001, 1, leftOut));
  EXPECT_FALSE(limit.admitAt(5999, 1, leftOut));
  EXPECT_TRUE(limit.admitAt(6000, 1, leftOut));
  EXPECT_EQ(leftOut, u32{3});
}

TEST(TraceLimits, AClockThatStandsStillDoesNotSilenceForEver) {
  tLineLimit limit;
  u32 leftOut = 0;
  EXPECT_TRUE(limit.admitAt(0, 1, leftOut));
  u32 count = 0;
  while (!limit.admitAt(0, 1, leftOut)) ++count;
  EXPECT_EQ(count, u32{tLineLimit::kPatience});
  EXPECT_EQ(leftOut, u32{tLineLimit::kPatience});
  EXPECT_FALSE(limit.admitAt(0, 1, leftOut));
}
