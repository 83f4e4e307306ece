#include "oxdiagk/tBlockTracer.h"

#include "conformance/harness.h"
#include "oxdiagk/tSiteBlockTracer.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTraceFilter.h"
#include "support/prefixedStream.h"
#include "vexk/number.h"

using nOXDIAG100::tBlockTracer;
using nOXDIAG100::tLineOrigin;
using nOXDIAG100::tSiteBlockTracer;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceSite;

namespace {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);
constexpr unsigned int kShown = 100;
constexpr unsigned int kHidden = 99;

// The texts of a block tracer are writable by type.
struct tTexts {
  char component[5] = "rack";
  char file[9] = "port.cpp";
  char work[5] = "work";
  char play[5] = "play";
};

// A stream whose prefixes are the indentation alone.
struct tBlockStream : tPrefixedStream, tTexts {
  tBlockStream() { trace.setMinPrefixWidth(0); }

  char const* text() const { return record.text(); }
};

}  // namespace

TEST(BlockTracer, ABlockIsTracedAtItsEntryAndAtItsExit) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    EXPECT_STREQ("work; {\n", stream.text());
    stream.trace.put("inside").endl();
  }
  EXPECT_STREQ("work; {\ninside\n} work\n", stream.text());
}

TEST(BlockTracer, LinesInsideAreIndentedAndTheExitIsNot) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    tTestLine{}.openOn(stream.trace).put("inside").endl();
  }
  EXPECT_STREQ("work; {\n  inside\n} work\n", stream.text());
}

TEST(BlockTracer, BlocksNest) {
  tBlockStream stream;
  {
    tBlockTracer const outer(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    tBlockTracer const inner(stream.component, kVersion, 43, stream.file, kShown, stream.play,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    EXPECT_EQ(i32{2}, stream.trace.getNestingLevel());
  }
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  EXPECT_STREQ("work; {\n  play; {\n  } play\n} work\n", stream.text());
}

TEST(BlockTracer, BothLinesHaveThePrefixOfTheBlock) {
  tBlockStream stream;
  stream.trace.setMinPrefixWidth(40);
  stream.trace.enableComponentVersion();
  stream.trace.enableVerbosity();
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, 123, stream.work, nullptr,
                             static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_STREQ(
      "[rack--1.0.0f7--42--port.cpp--123------] work; {\n"
      "[rack--1.0.0f7--42--port.cpp--123------] } work\n",
      stream.text());
}

TEST(BlockTracer, BothLinesArePiecesOfTheirOwn) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_TRUE(stream.record.pieceIs(0, "work; {\n"));
  EXPECT_TRUE(stream.record.pieceIs(1, "} work\n"));
}

TEST(BlockTracer, TheObjectIsShownAtEntryOnly) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             reinterpret_cast<void*>(0xFFFFA00012ABCDEF),
                             static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_STREQ("work; this=0xFFFFA00012ABCDEF; {\n} work\n", stream.text());
}

TEST(BlockTracer, ALegacyStatusIsShownAsItIsThen) {
  tBlockStream stream;
  i32 status = 0;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, &status, stream.trace);
    status = -5;
  }
  EXPECT_STREQ("work; tStatus=0 {\n} tStatus=-5; work\n", stream.text());
}

TEST(BlockTracer, ALegacyStatusIsShownInFullWidth) {
  tBlockStream stream;
  i32 status = INT32_MIN;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, &status, stream.trace);
    status = INT32_MAX;
  }
  EXPECT_STREQ("work; tStatus=-2147483648 {\n} tStatus=2147483647; work\n", stream.text());
}

TEST(BlockTracer, AStatusObjectIsShownByItsCodeAsItIsThen) {
  tBlockStream stream;
  tStatus2 status;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, &status, stream.trace);
    status.setCode(-50352);
  }
  EXPECT_STREQ("work; tStatus2 code=0 {\n} tStatus2 code=-50352; work\n", stream.text());
}

TEST(BlockTracer, WithoutStatusObjectNoStatusIsShown) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<tStatus2*>(nullptr), stream.trace);
  }
  EXPECT_STREQ("work; {\n} work\n", stream.text());
}

TEST(BlockTracer, EverythingIsShownTogether) {
  tBlockStream stream;
  i32 status = -1;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             reinterpret_cast<void*>(0x1A), &status, stream.trace);
    status = 88800;
  }
  EXPECT_STREQ("work; this=0x1A; tStatus=-1 {\n} tStatus=88800; work\n", stream.text());
}

TEST(BlockTracer, EverythingIsShownTogetherWithAStatusObject) {
  tBlockStream stream;
  tStatus2 status(7);
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             reinterpret_cast<void*>(0x1A), &status, stream.trace);
  }
  EXPECT_STREQ("work; this=0x1A; tStatus2 code=7 {\n} tStatus2 code=7; work\n", stream.text());
}

TEST(BlockTracer, ABlockOfNowhereHasThePrefixOfItsOrigin) {
  tPrefixedStream stream;
  stream.showFieldsInFull();
  tTraceSite const nowhere;
  tLineOrigin const origin{"rack", "port.cpp", kVersion, 42};
  tStatus2 const status(7);
  i32 const number = 8;
  { tSiteBlockTracer const block(nowhere, origin, kShown, "one", nullptr, &number, stream.trace); }
  { tSiteBlockTracer const block(nowhere, origin, kShown, "two", nullptr, &status, stream.trace); }
  EXPECT_STREQ(
      "[rack--42--port.cpp] one; tStatus=8 {\n"
      "[rack--42--port.cpp] } tStatus=8; one\n"
      "[rack--42--port.cpp] two; tStatus2 code=7 {\n"
      "[rack--42--port.cpp] } tStatus2 code=7; two\n",
      stream.record.text());
}

TEST(BlockTracer, ABlockWithoutNameShowsNone) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, nullptr, nullptr,
                             static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_STREQ("{\n} \n", stream.text());
}

TEST(BlockTracer, ABlockWithoutNameShowsTheRest) {
  tBlockStream stream;
  i32 status = 5;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, nullptr,
                             reinterpret_cast<void*>(0x1A), &status, stream.trace);
  }
  EXPECT_STREQ("this=0x1A; tStatus=5 {\n} tStatus=5; \n", stream.text());
}

TEST(BlockTracer, AnEmptyNameIsAName) {
  tBlockStream stream;
  char name[1] = "";
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, name, nullptr,
                             static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_STREQ("; {\n} \n", stream.text());
}

TEST(BlockTracer, MissingComponentAndFileAreShownAsNothing) {
  tBlockStream stream;
  stream.showFieldsInFull();
  {
    tBlockTracer const block(nullptr, kVersion, 42, nullptr, kShown, stream.work, nullptr,
                             static_cast<i32*>(nullptr), stream.trace);
  }
  EXPECT_STREQ("[--42--] work; {\n[--42--] } work\n", stream.text());
}

TEST(BlockTracer, AHiddenBlockWritesNothingAndStillNests) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kHidden, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
    tTestLine{}.openOn(stream.trace).put("inside").endl();
  }
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  EXPECT_STREQ("  inside\n", stream.text());
}

TEST(BlockTracer, ABlockOfADisabledStreamStillNests) {
  tBlockStream stream;
  stream.trace.disable();
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  }
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(BlockTracer, TheFilterMayHideOneOfTheTwoLines) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    ASSERT_NE(stream.trace.getFilter(), nullptr);
    stream.trace.getFilter()->parseExpression("verbosity>=101");
  }
  EXPECT_STREQ("work; {\n", stream.text());
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
}

TEST(BlockTracer, AnExitMayBeShownWithoutItsEntry) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kHidden, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    ASSERT_NE(stream.trace.getFilter(), nullptr);
    stream.trace.getFilter()->parseExpression("verbosity>=99");
  }
  EXPECT_STREQ("} work\n", stream.text());
}

TEST(BlockTracer, AHiddenBlockSeesItsStatusLater) {
  tBlockStream stream;
  i32 status = -5;
  stream.trace.disable();
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, &status, stream.trace);
    status = 0;
    stream.trace.enable();
  }
  EXPECT_STREQ("} tStatus=0; work\n", stream.text());
}

TEST(BlockTracer, TheLevelNeverFallsBelow0) {
  tBlockStream stream;
  {
    tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                             nullptr, static_cast<i32*>(nullptr), stream.trace);
    tPrefixedStream::withType(tTrace::kBlockExit).openOn(stream.trace).endl();
    EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
  }
  EXPECT_EQ(i32{0}, stream.trace.getNestingLevel());
}

TEST(BlockTracer, TheLevelIsThatOfTheBlocksStream) {
  tBlockStream stream;
  tRecordingDestination otherRecord(1);
  tPrivateTrace other(otherRecord);
  tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                           nullptr, static_cast<i32*>(nullptr), stream.trace);
  EXPECT_EQ(i32{1}, stream.trace.getNestingLevel());
  EXPECT_EQ(i32{0}, other.getNestingLevel());
  EXPECT_EQ(u32{0}, otherRecord.pieceCount());
}

TEST(BlockTracer, ItsOwnNestingLevelIsAlways0) {
  tBlockStream stream;
  EXPECT_EQ(u32{0}, tBlockTracer::getNestingLevel());
  tBlockTracer const outer(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                           nullptr, static_cast<i32*>(nullptr), stream.trace);
  tBlockTracer const inner(stream.component, kVersion, 43, stream.file, kShown, stream.play,
                           nullptr, static_cast<i32*>(nullptr), stream.trace);
  EXPECT_EQ(u32{0}, tBlockTracer::getNestingLevel());
}

// The objects stand in frames of clients that were compiled before.
TEST(BlockTracer, ItKeepsWhatItWasBuiltWithInThisOrder) {
  struct tMembers {
    char* component;
    tSSVersion version;
    u32 line;
    char* file;
    u32 verbosity;
    char* blockName;
    i32* legacyStatus;
    tStatus2* statusObject;
    tTrace* trace;
  };
  static_assert(sizeof(tMembers) == sizeof(tBlockTracer));
  tBlockStream stream;
  i32 status = 0;
  tBlockTracer const block(stream.component, kVersion, 42, stream.file, kShown, stream.work,
                           nullptr, &status, stream.trace);
  tMembers members;
  __builtin_memcpy(static_cast<void*>(&members), static_cast<void const*>(&block), sizeof(members));
  EXPECT_TRUE(members.component == stream.component);
  EXPECT_TRUE(members.version == kVersion);
  EXPECT_EQ(u32{42}, members.line);
  EXPECT_TRUE(members.file == stream.file);
  EXPECT_EQ(u32{kShown}, members.verbosity);
  EXPECT_TRUE(members.blockName == stream.work);
  EXPECT_TRUE(members.legacyStatus == &status);
  EXPECT_TRUE(members.statusObject == nullptr);
  EXPECT_TRUE(members.trace == &stream.trace);
}
