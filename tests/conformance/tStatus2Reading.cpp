// Statuses from a stream: what was written, and what older, newer and broken writers wrote.

#include "conformance/harness.h"
#include "qelmk/statusCodes.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

// Reads the stream from its first item into `target` and returns what became of a clean status.
i32 readFrom(tItemStream& stream, tStatus2& target) {
  i32 status = 0;
  stream.rewind();
  target.readExternal(stream, status);
  return status;
}

tItemStream& knownForm() {
  tItemStream& stream = cleanStream();
  writeKnownForm(stream);
  return stream;
}

// The known form with a description, number 42, in front of its high halves.
tItemStream& describedForm() {
  static constinit tItemStream::tItem items[2] = {};
  tItemStream& stream = cleanStream();
  tTestDescription const description(42);
  i32 status = 0;
  stream.writeObject(&description, status);
  for (u32 i = 0; i != 2; ++i) items[i] = stream.getItem(i);
  stream.erase(0);
  stream.erase(0);
  writeKnownForm(stream);
  stream.insert(kFormHighHalves, items[1]);
  stream.insert(kFormHighHalves, items[0]);
  stream.replace(kFormDescriptionFlag, 1);
  return stream;
}

// Writes the form of an object that is no description in place of one.
void putForeignObject(tItemStream& stream) {
  tForeignObject const foreign;
  i32 status = 0;
  u32 const count = stream.getCount();
  stream.writeObject(&foreign, status);
  tItemStream::tItem const item = stream.getItem(count);
  stream.erase(count);
  stream.insert(kFormHighHalves, item);
  stream.replace(kFormDescriptionFlag, 1);
}

}  // namespace

TEST(StatusReading, ASuccessComesBack) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2().writeExternal(stream, status);
  tStatus2 target(kFormError);
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(target.getCode(), 0);
  EXPECT_FALSE(target.hasDetail());
}

TEST(StatusReading, APlainCodeComesBack) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2(kFormError).writeExternal(stream, status);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(target.getCode(), kFormError);
  EXPECT_FALSE(target.hasDetail());
}

TEST(StatusReading, ADetailComesBackInFull) {
  tItemStream& stream = knownForm();
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(target.getCode(), kFormError);
  EXPECT_TRUE(hasKnownOrigin(target));
  EXPECT_TRUE(hasKnownAddresses(target));
  EXPECT_TRUE(target.getDescription() == nullptr);
  EXPECT_EQ(stream.getPosition(), u32{kFormCount});
}

TEST(StatusReading, WhatWasReadIsWrittenAgainItemByItem) {
  static constinit tItemStream::tItem items[kFormCount + 2] = {};
  tItemStream& stream = describedForm();
  for (u32 i = 0; i != kFormCount + 2; ++i) items[i] = stream.getItem(i);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  tItemStream& again = cleanStream();
  i32 status = 0;
  target.writeExternal(again, status);
  ASSERT_EQ(again.getCount(), u32{kFormCount} + 2);
  u32 different = 0;
  for (u32 i = 0; i != kFormCount + 2; ++i) different += again.getItem(i) == items[i] ? 0 : 1;
  EXPECT_EQ(different, u32{0});
}

TEST(StatusReading, ADescriptionComesBack) {
  i32 const before = tTestDescription::living;
  {
    tItemStream& stream = describedForm();
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), 0);
    EXPECT_EQ(numberOf(target.getDescription()), 42);
    EXPECT_TRUE(hasKnownAddresses(target));
    EXPECT_EQ(stream.getPosition(), u32{kFormCount} + 2);
  }
  EXPECT_EQ(tTestDescription::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusReading, TheOldDetailIsDropped) {
  tOrigin const origin("slotbus", "old.cpp");
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  tItemStream& stream = knownForm();
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownOrigin(target));
  EXPECT_EQ(theHeap().getAllocatedBlocks(), u32{1});
}

TEST(StatusReading, TheOldDetailIsDroppedWhenNoneFollows) {
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2(-5).writeExternal(stream, status);
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_FALSE(target.hasDetail());
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusReading, TheOldDetailIsDroppedWhenTheStreamIsEmpty) {
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  EXPECT_EQ(readFrom(cleanStream(), target), tItemStream::kStatusEnded);
  EXPECT_FALSE(target.hasDetail());
  EXPECT_EQ(target.getCode(), -5);
}

TEST(StatusReading, AnyDescriptionFlagButZeroAnnouncesADescription) {
  tItemStream& stream = describedForm();
  stream.replace(kFormDescriptionFlag, 2);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(numberOf(target.getDescription()), 42);
}

TEST(StatusReading, CopiesKeepTheOldDetail) {
  tOrigin const origin("slotbus", "old.cpp");
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  tStatus2 const copy(target);
  tItemStream& stream = knownForm();
  readFrom(stream, target);
  EXPECT_STREQ(copy.getFileName(), "old.cpp");
  EXPECT_EQ(copy.getCode(), -5);
}

TEST(StatusReading, NothingHappensWithAnErrorOnEntry) {
  tOrigin const origin("slotbus", "old.cpp");
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  tItemStream& stream = knownForm();
  i32 status = kEarlierError;
  target.readExternal(stream, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(target.getCode(), -5);
  EXPECT_STREQ(target.getFileName(), "old.cpp");
  EXPECT_EQ(stream.getPosition(), u32{0});
}

TEST(StatusReading, AWarningOnEntryIsKept) {
  tItemStream& stream = knownForm();
  tStatus2 target;
  i32 status = 12345;
  target.readExternal(stream, status);
  EXPECT_EQ(status, 12345);
  EXPECT_TRUE(hasKnownOrigin(target));
}

TEST(StatusReading, ExtraFieldsOfANewerWriterAreSkipped) {
  tItemStream& stream = knownForm();
  stream.replace(kFormLength, kFixedLength + 3);
  for (u32 i = 0; i != 3; ++i) stream.insert(kFormFlag + 1, character('x'));
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownOrigin(target));
  EXPECT_TRUE(hasKnownAddresses(target));
  EXPECT_EQ(stream.getPosition(), u32{kFormCount} + 3);
}

TEST(StatusReading, ExtraFieldsAreSkippedWithoutDetailToo) {
  tItemStream& stream = cleanStream();
  stream.put(unsignedItem(kFixedLength + 1));
  stream.put(signedItem(kFormError));
  stream.put(unsignedItem(0));
  stream.put(character('x'));
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(stream.getPosition(), u32{4});
}

TEST(StatusReading, AShorterFixedPartIsReadLikeAFullOne) {
  tItemStream& stream = knownForm();
  stream.replace(kFormLength, 0);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownOrigin(target));
}

TEST(StatusReading, AnyFlagButZeroAnnouncesADetail) {
  tItemStream& stream = knownForm();
  stream.replace(kFormFlag, 0x80000000);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownOrigin(target));
}

TEST(StatusReading, ExtraFieldsOfANewerDetailAreSkippedBehindTheMarker) {
  tItemStream& stream = knownForm();
  stream.replace(kFormDetailLength, kDetailFixedLength + 5);
  for (u32 i = 0; i != 5; ++i) stream.insert(kFormMarker + 1, character('x'));
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownAddresses(target));
  EXPECT_EQ(stream.getPosition(), u32{kFormCount} + 5);
}

TEST(StatusReading, ExtraFieldsStandInFrontOfTheDescription) {
  tItemStream& stream = describedForm();
  stream.replace(kFormDetailLength, kDetailFixedLength + 1);
  stream.insert(kFormMarker + 1, character('x'));
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(numberOf(target.getDescription()), 42);
  EXPECT_TRUE(hasKnownAddresses(target));
}

TEST(StatusReading, AnOlderDetailHasNeitherMarkerNorHighHalves) {
  constexpr u32 kLengths[] = {0, 1, 177, 180};
  for (u32 length : kLengths) {
    tItemStream& stream = knownForm();
    stream.replace(kFormDetailLength, length);
    stream.erase(kFormMarker);
    stream.endAt(kFormMarker);
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), 0);
    EXPECT_TRUE(hasKnownOrigin(target));
    EXPECT_TRUE(hasKnownAddresses(target, false));
    EXPECT_EQ(stream.getPosition(), u32{kFormMarker});
  }
}

TEST(StatusReading, AnOlderDetailMayHaveADescription) {
  tItemStream& stream = describedForm();
  stream.replace(kFormDetailLength, 177);
  stream.erase(kFormMarker);
  stream.endAt(kFormMarker + 2);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(numberOf(target.getDescription()), 42);
  EXPECT_TRUE(hasKnownAddresses(target, false));
}

TEST(StatusReading, AMarkerOfZeroMeansNoHighHalves) {
  tItemStream& stream = knownForm();
  stream.replace(kFormMarker, 0);
  stream.endAt(kFormHighHalves);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownAddresses(target, false));
}

TEST(StatusReading, AnyMarkerButZeroMeansHighHalves) {
  tItemStream& stream = knownForm();
  stream.replace(kFormMarker, 2);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownAddresses(target));
}

TEST(StatusReading, NamesWithoutTerminatorGetOne) {
  tItemStream& stream = knownForm();
  for (u32 i = 0; i != 24; ++i) stream.replace(kFormComponent + i, 'c');
  for (u32 i = 0; i != 101; ++i) stream.replace(kFormFile + i, 'f');
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(__builtin_strlen(target.getComponentName()), size_t{23});
  EXPECT_EQ(__builtin_strlen(target.getFileName()), size_t{100});
}

TEST(StatusReading, AForeignObjectIsDestroyedAndReported) {
  i32 const before = tForeignObject::living;
  tItemStream& stream = knownForm();
  putForeignObject(stream);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), nQELM100::kStatusClassMismatch);
  EXPECT_TRUE(target.getDescription() == nullptr);
  EXPECT_TRUE(hasKnownOrigin(target));
  EXPECT_TRUE(hasKnownAddresses(target));
  EXPECT_EQ(stream.getPosition(), u32{kFormCount} + 1);
  EXPECT_EQ(tForeignObject::living, before);
}

TEST(StatusReading, ANullObjectIsNoDescription) {
  tItemStream& stream = knownForm();
  stream.replace(kFormDescriptionFlag, 1);
  stream.insert(kFormHighHalves, {tItemStream::kNullObject, 0});
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), nQELM100::kStatusClassMismatch);
  EXPECT_TRUE(target.getDescription() == nullptr);
}

TEST(StatusReading, ADescriptionInThePlaceOfTheMarkerIsNotRead) {
  tItemStream& stream = describedForm();
  stream.erase(kFormDescriptionFlag + 1);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), tItemStream::kStatusWrongKind);
  EXPECT_TRUE(target.getDescription() == nullptr);
}

TEST(StatusReading, ADescriptionThatIsNotThereKeepsTheStreamsReason) {
  tItemStream& stream = knownForm();
  stream.replace(kFormDescriptionFlag, 1);
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), tItemStream::kStatusWrongKind);
  EXPECT_TRUE(target.getDescription() == nullptr);
  EXPECT_TRUE(hasKnownAddresses(target, false));
}

TEST(StatusReading, TheStreamsEndIsReportedAtEveryPosition) {
  i32 const before = tTestDescription::living;
  for (u32 end = 0; end != kFormCount + 2; ++end) {
    tItemStream& stream = describedForm();
    stream.endAt(end);
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), tItemStream::kStatusEnded);
    EXPECT_EQ(target.hasDetail(), end > kFormFlag);
    EXPECT_EQ(target.getCode(), end > kFormCode ? kFormError : 0);
    EXPECT_EQ(target.getLineNumber(), end > kFormLine ? u32{77} : u32{0});
    EXPECT_EQ(target.getDescription() != nullptr, end > kFormHighHalves + 1);
    EXPECT_LE(__builtin_strlen(target.getComponentName()), size_t{3});
  }
  EXPECT_EQ(tTestDescription::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(StatusReading, AddressesThatAreNotThereAreZero) {
  tItemStream& stream = knownForm();
  stream.endAt(kFormLowHalves + 4);
  tStatus2 target;
  readFrom(stream, target);
  u64 addresses[tStatus2::kStackTraceLength];
  target.getStackTrace(addresses);
  EXPECT_EQ(addresses[3], u64{0x40});
  for (u32 i = 4; i != tStatus2::kStackTraceLength; ++i) EXPECT_EQ(addresses[i], u64{0});
}

TEST(StatusReading, HostileLengthsEndWithTheStream) {
  tItemStream& stream = knownForm();
  stream.replace(kFormLength, 0xFFFFFFFF);
  tStatus2 target;
  EXPECT_TRUE(readFrom(stream, target) < 0);
  EXPECT_FALSE(target.hasDetail());
  tItemStream& second = knownForm();
  second.replace(kFormDetailLength, 0xFFFFFFFF);
  EXPECT_TRUE(readFrom(second, target) < 0);
  EXPECT_TRUE(hasKnownOrigin(target));
}

TEST(StatusReading, InAFullHeapKeepsAnErrorCodeWithoutDetail) {
  tItemStream& stream = knownForm();
  tFullHeap const full;
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(target.getCode(), kFormError);
  EXPECT_FALSE(target.hasDetail());
}

TEST(StatusReading, InAFullHeapTurnsAnyOtherCodeIntoOutOfMemory) {
  constexpr i32 kCodes[] = {0, 61001};
  for (i32 code : kCodes) {
    tItemStream& stream = knownForm();
    stream.replace(kFormCode, static_cast<u32>(code));
    tFullHeap const full;
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), 0);
    EXPECT_EQ(target.getCode(), kStatusOutOfMemory);
    EXPECT_FALSE(target.hasDetail());
  }
}

TEST(StatusReading, InAFullHeapTheWholeFormIsPassedOver) {
  tItemStream& stream = knownForm();
  stream.put(unsignedItem(4711));
  tFullHeap const full;
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_EQ(stream.getPosition(), u32{kFormCount});
}

TEST(StatusReading, InAFullHeapTheStreamsEndIsReportedAtEveryPosition) {
  tFullHeap const full;
  for (u32 end = 0; end != kFormCount; ++end) {
    tItemStream& stream = knownForm();
    stream.endAt(end);
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), tItemStream::kStatusEnded);
    EXPECT_FALSE(target.hasDetail());
  }
}

// This stream cannot pass over an object that it cannot make, so nothing behind it can be read.
TEST(StatusReading, InAFullHeapADescriptionThatIsNotPassedOverIsReported) {
  tItemStream& stream = describedForm();
  tFullHeap const full;
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), kStatusOutOfMemory);
  EXPECT_EQ(target.getCode(), kFormError);
  EXPECT_FALSE(target.hasDetail());
}

TEST(StatusReading, InAFullHeapAForeignObjectIsReported) {
  i32 const before = tForeignObject::living;
  tItemStream& stream = knownForm();
  putForeignObject(stream);
  tFullHeap const full;
  tStatus2 target;
  EXPECT_EQ(readFrom(stream, target), nQELM100::kStatusClassMismatch);
  EXPECT_EQ(stream.getPosition(), u32{kFormCount} + 1);
  EXPECT_EQ(tForeignObject::living, before);
}

TEST(StatusReading, InAFullHeapUsesThePlaceOfTheOldDetail) {
  tStatus2 target;
  OXDIAG_SET_STATUS(target, -5);
  tItemStream& stream = knownForm();
  tFullHeap const full;
  EXPECT_EQ(readFrom(stream, target), 0);
  EXPECT_TRUE(hasKnownOrigin(target));
}

TEST(StatusReading, ADescriptionThatFindsNoRoomIsReported) {
  i32 const before = tTestDescription::living;
  {
    tItemStream& stream = describedForm();
    void* const record = takeBlock(240);
    tFullHeap const full;
    giveBack(record);
    tStatus2 target;
    EXPECT_EQ(readFrom(stream, target), kStatusOutOfMemory);
    EXPECT_TRUE(hasKnownOrigin(target));
    EXPECT_TRUE(target.getDescription() == nullptr);
  }
  EXPECT_EQ(tTestDescription::living, before);
}
