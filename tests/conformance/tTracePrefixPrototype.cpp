#include "conformance/harness.h"
#include "support/prefixedStream.h"

namespace {

struct tLegendStream : tPrefixedStream {
  char const* legend() {
    record.clear();
    trace.putPrefixPrototype().endl();
    return record.text();
  }
};

}  // namespace

TEST(TracePrefixPrototype, NamesTheDefaultFields) {
  tLegendStream stream;
  EXPECT_STREQ("tTrace::putPrefixPrototype=[compname--linenumber--filename]\n", stream.legend());
}

TEST(TracePrefixPrototype, NamesAllFieldsInTheOrderOfThePrefix) {
  tLegendStream stream;
  stream.trace.enableComponentVersion();
  stream.trace.enableThreadId();
  stream.trace.enableTimeStamp();
  stream.trace.enableTimeDelta();
  stream.trace.enableVerbosity();
  EXPECT_STREQ(
      "tTrace::putPrefixPrototype=[compname--compver--linenumber--filename--threadid--"
      "timestamp--timedelta--verbosity]\n",
      stream.legend());
}

TEST(TracePrefixPrototype, NamesEachFieldAloneWithoutSeparator) {
  tLegendStream stream;
  stream.disableAllFields();
  stream.trace.enableComponentName();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[compname]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableComponentVersion();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[compver]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableLineNumber();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[linenumber]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableFileName();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[filename]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableThreadId();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[threadid]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableTimeStamp();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[timestamp]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableTimeDelta();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[timedelta]\n", stream.legend());
  stream.disableAllFields();
  stream.trace.enableVerbosity();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[verbosity]\n", stream.legend());
}

TEST(TracePrefixPrototype, NamesThePathWhenBothFileSwitchesAreOn) {
  tLegendStream stream;
  stream.trace.enableFilePath();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[compname--linenumber--filepath]\n", stream.legend());
}

TEST(TracePrefixPrototype, ThePathSwitchAloneNamesNothing) {
  tLegendStream stream;
  stream.disableAllFields();
  stream.trace.enableFilePath();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[]\n", stream.legend());
}

TEST(TracePrefixPrototype, WithoutFieldsNothingStandsBetweenTheBrackets) {
  tLegendStream stream;
  stream.disableAllFields();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[]\n", stream.legend());
}

TEST(TracePrefixPrototype, ItDoesNotEndTheLine) {
  tLegendStream stream;
  stream.disableAllFields();
  stream.trace.putPrefixPrototype();
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
  stream.trace.put("!").endl();
  EXPECT_STREQ("tTrace::putPrefixPrototype=[]!\n", stream.record.text());
}

TEST(TracePrefixPrototype, TheWidthDoesNotCutIt) {
  tLegendStream stream;
  stream.trace.setMinPrefixWidth(1);
  EXPECT_STREQ("tTrace::putPrefixPrototype=[compname--linenumber--filename]\n", stream.legend());
}

TEST(TracePrefixPrototype, InAHiddenLineItIsDropped) {
  tLegendStream stream;
  stream.withVerbosity(99).openOn(stream.trace).putPrefixPrototype().endl();
  EXPECT_STREQ("", stream.record.text());
}

TEST(TracePrefixPrototype, OnADisabledStreamItIsDropped) {
  tLegendStream stream;
  stream.trace.disable();
  EXPECT_STREQ("", stream.legend());
}

TEST(TracePrefixPrototype, TheFilterIsNotAsked) {
  tLegendStream stream;
  stream.disableAllFields();
  stream.trace.configure("--filter comp==nobody");
  EXPECT_STREQ("tTrace::putPrefixPrototype=[]\n", stream.legend());
}
