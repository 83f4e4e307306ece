// Reportables in a stream: the items of each class, and streams that end early or lie.

#include "conformance/harness.h"
#include "oxdiagk/tReportItemContent.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"
#include "support/tItemStream.h"

namespace {

using namespace nOXDIAG100;
using tItem = tItemStream::tItem;

constexpr tItem i32Item(i32 value) {
  return {tItemStream::kI32, static_cast<u32>(value)};
}
constexpr tItem u32Item(u32 value) {
  return {tItemStream::kU32, value};
}

tItemStream& writtenStream(iVariantReportable const& reportable) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  reportable.writeExternal(stream, status);
  EXPECT_EQ(status, 0);
  return stream;
}

// Whether exactly these items are written.
template <u32 Count>
bool writes(iVariantReportable const& reportable, tItem const (&items)[Count]) {
  tItemStream& stream = writtenStream(reportable);
  bool isEqual = stream.getCount() == Count;
  for (u32 index = 0; isEqual && index != Count; ++index) {
    isEqual = stream.getItem(index) == items[index];
  }
  return isEqual;
}

template <class T>
bool isEquivalent(T const& one, T const& other) {
  tStatus2 status;
  return one.isEquivalent(other, status) == 1;
}

}  // namespace

TEST(ReportableStream, MarkersWriteNothing) {
  EXPECT_EQ(writtenStream(tTitleReportable()).getCount(), u32{0});
  EXPECT_EQ(writtenStream(tWhiteSpaceReportable()).getCount(), u32{0});
}

TEST(ReportableStream, SignedNumbersAndPropertiesHaveTheSameForm) {
  tItem const items[] = {u32Item(2), i32Item(-1), i32Item(2)};
  tStatus2 status;
  _STL::vector<i32> const list = listOf<i32>(-1, 2);
  EXPECT_TRUE(writes(tIntrinsicTypeReportable<i32>(list, status), items));
  EXPECT_TRUE(writes(tPropertyIDReportable(list, status), items));
  i32 code = 0;
  tPropertyIDReportable properties;
  writtenStream(tIntrinsicTypeReportable<i32>(list, status));
  tItemStream& stream = writtenStream(tIntrinsicTypeReportable<i32>(list, status));
  properties.readExternal(stream, code);
  EXPECT_TRUE(properties.getData(status) == list);
}

TEST(ReportableStream, NumbersAreTheirCountAndEachInItsKind) {
  tStatus2 status;
  tItem const unsignedItems[] = {u32Item(2), u32Item(0xFFFFFFFF), u32Item(2)};
  EXPECT_TRUE(
      writes(tIntrinsicTypeReportable<u32>(listOf<u32>(0xFFFFFFFF, 2), status), unsignedItems));
  tItem const wideItems[] = {u32Item(2),
                             {tItemStream::kI64, 0xFFFFFFFE},
                             {tItemStream::kI64, 0xFFFFFFFF},
                             {tItemStream::kI64, 2},
                             {tItemStream::kI64, 1}};
  EXPECT_TRUE(
      writes(tIntrinsicTypeReportable<i64>(listOf<i64>(-2, 0x100000002), status), wideItems));
  tItem const unsignedWideItems[] = {u32Item(1), {tItemStream::kU64, 2}, {tItemStream::kU64, 1}};
  EXPECT_TRUE(writes(tIntrinsicTypeReportable<u64>(u64{0x100000002}, status), unsignedWideItems));
}

TEST(ReportableStream, TextsAreTheirCountAndEachText) {
  tStatus2 status;
  tItem const items[] = {u32Item(2),
                         {tItemStream::kWideString, 2},
                         {tItemStream::kCharacter, 'a'},
                         {tItemStream::kCharacter, 0x20AC},
                         {tItemStream::kWideString, 0}};
  tIntrinsicTypeReportable<_STL::wstring> const texts(
      listOf(_STL::wstring(L"a\x20AC"), _STL::wstring()), status);
  EXPECT_TRUE(writes(texts, items));
}

TEST(ReportableStream, ARangeIsItsBounds) {
  tStatus2 status;
  tItem const items[] = {i32Item(-1), i32Item(2)};
  EXPECT_TRUE(writes(tBoundedRangeReportable<i32>(-1, 2, status), items));
  tItem const unsignedItems[] = {u32Item(9), u32Item(1)};
  EXPECT_TRUE(writes(tBoundedRangeReportable<u32>(9, 1, status), unsignedItems));
  tItem const wideItems[] = {{tItemStream::kI64, 0xFFFFFFFF},
                             {tItemStream::kI64, 0xFFFFFFFF},
                             {tItemStream::kI64, 2},
                             {tItemStream::kI64, 1}};
  EXPECT_TRUE(writes(tBoundedRangeReportable<i64>(-1, 0x100000002, status), wideItems));
  tItem const unsignedWideItems[] = {{tItemStream::kU64, 1},
                                     {tItemStream::kU64, 0},
                                     {tItemStream::kU64, 2},
                                     {tItemStream::kU64, 1}};
  EXPECT_TRUE(writes(tBoundedRangeReportable<u64>(1, 0x100000002, status), unsignedWideItems));
}

TEST(ReportableStream, APropertyIsItsIdAndTheList) {
  tStatus2 status;
  tItem const items[] = {i32Item(-7), u32Item(2), i32Item(-1), i32Item(2)};
  EXPECT_TRUE(writes(tEnumPropertyReportable(-7, listOf<i32>(-1, 2), status), items));
}

TEST(ReportableStream, IdentifiersHaveTheirOwnForm) {
  tStatus2 status;
  tItem const items[] = {u32Item(1), u32Item(0x7A0C5A9E), u32Item(0x4D0F31B4), u32Item(0x03021C9B),
                         u32Item(0x07060504)};
  EXPECT_TRUE(writes(tGUIDReportable(kFirstGUID, status), items));
}

TEST(ReportableStream, ATimeIsItsWordsFromTheHighestToTheLowest) {
  tStatus2 status;
  tItem const items[] = {u32Item(2), u32Item(4), u32Item(3), u32Item(2), u32Item(1),
                         u32Item(8), u32Item(7), u32Item(6), u32Item(5)};
  tSSTimeAbsoluteReportable const times(listOf(timeOf(1, 2, 3, 4), timeOf(5, 6, 7, 8)), status);
  EXPECT_TRUE(writes(times, items));
}

TEST(ReportableStream, AProxyIsTheLookupClassAndTheList) {
  tStatus2 status;
  tItem const items[] = {{tItemStream::kString, 2},
                         {tItemStream::kCharacter, 't'},
                         {tItemStream::kCharacter, 'T'},
                         u32Item(1),
                         i32Item(-3)};
  EXPECT_TRUE(writes(tStringProxyReportable(-3, "tT", status), items));
}

TEST(ReportableStream, AnEmptyListIsACountOfZero) {
  tItem const items[] = {u32Item(0)};
  EXPECT_TRUE(writes(tPropertyIDReportable(), items));
  EXPECT_TRUE(writes(tGUIDReportable(), items));
}

TEST(ReportableStream, WhatIsReadReplacesTheValues) {
  visitReportables([](auto tag) {
    tItemStream& stream = writtenStream(tag.one());
    auto target = tag.other();
    i32 status = kWarning;
    target.readExternal(stream, status);
    EXPECT_EQ(status, kWarning);
    EXPECT_EQ(stream.getPosition(), stream.getCount());
    EXPECT_TRUE(isEquivalent(target, tag.one()));
  });
}

TEST(ReportableStream, AnEmptyFormIsReadToo) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    tItemStream& stream = writtenStream(tReportable());
    auto target = tag.one();
    i32 status = 0;
    target.readExternal(stream, status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(isEquivalent(target, tReportable()));
  });
}

TEST(ReportableStream, ThatEndsEarlyLeavesTheValues) {
  visitReportables([](auto tag) {
    tItemStream& stream = writtenStream(tag.one());
    for (u32 end = 0; end < stream.getCount(); ++end) {
      stream.rewind();
      stream.endAt(end);
      auto target = tag.other();
      i32 status = 0;
      target.readExternal(stream, status);
      EXPECT_TRUE(status == tItemStream::kStatusEnded || status == kStatusOutOfMemory);
      EXPECT_TRUE(isEquivalent(target, tag.other()));
    }
  });
}

TEST(ReportableStream, AnItemOfAnotherKindLeavesTheValues) {
  visitReportables([](auto tag) {
    u32 const count = writtenStream(tag.one()).getCount();
    for (u32 index = 0; index < count; ++index) {
      tItemStream& stream = writtenStream(tag.one());
      stream.erase(index);
      stream.insert(index, {tItemStream::kNullObject, 0});
      auto target = tag.other();
      i32 status = 0;
      target.readExternal(stream, status);
      EXPECT_EQ(status, tItemStream::kStatusWrongKind);
      EXPECT_TRUE(isEquivalent(target, tag.other()));
    }
  });
}

TEST(ReportableStream, ThatTakesNoMoreGivesItsStatus) {
  visitReportables([](auto tag) {
    u32 const count = writtenStream(tag.one()).getCount();
    for (u32 end = 0; end < count; ++end) {
      tItemStream& stream = cleanStream();
      stream.endAt(end);
      i32 status = 0;
      tag.one().writeExternal(stream, status);
      EXPECT_EQ(status, tItemStream::kStatusEnded);
      EXPECT_EQ(stream.getCount(), end);
    }
  });
}

TEST(ReportableStream, AfterAnErrorNothingIsWrittenOrRead) {
  visitReportables([](auto tag) {
    tItemStream& stream = writtenStream(tag.one());
    u32 const count = stream.getCount();
    i32 status = kError;
    tag.one().writeExternal(stream, status);
    EXPECT_EQ(stream.getCount(), count);
    auto target = tag.other();
    target.readExternal(stream, status);
    EXPECT_EQ(stream.getPosition(), u32{0});
    EXPECT_TRUE(isEquivalent(target, tag.other()));
    EXPECT_EQ(status, kError);
  });
}

// Its place in a growing list included, with what a pool takes for its head: a list of objects
// without values stays as small beside its stream as a list of values.
TEST(ReportableStream, AnObjectTakesLessThanEightTimesItsForm) {
  constexpr size_t kPlace = 3 * sizeof(tReportItemContent);
  constexpr size_t kPoolHead = 16;
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    size_t const name = __builtin_strlen(tSample<tReportable>::kName);
    size_t const form = sizeof(i32) + sizeof(u32) + sizeof(u16) + name + sizeof(u32);
    EXPECT_LT(kPlace + kPoolHead + (sizeof(tReportable) + 15) / 16 * 16, 8 * form);
  });
}

TEST(ReportableStream, ACountThatCannotBeIsExhaustedMemory) {
  constexpr u32 kCounts[] = {3, 0x7FFFFFFF, 0xFFFFFFFF};
  for (u32 const count : kCounts) {
    tStatus2 ignored;
    tItemStream& stream = writtenStream(tPropertyIDReportable(listOf<i32>(1, 2), ignored));
    stream.replace(0, count);
    tPropertyIDReportable target(9, ignored);
    i32 status = 0;
    target.readExternal(stream, status);
    EXPECT_EQ(status, kStatusOutOfMemory);
    EXPECT_EQ(target.getData(ignored)[0], 9);
  }
}

TEST(ReportableStream, AListOfAnotherKindIsRefused) {
  tStatus2 ignored;
  tItemStream& stream = writtenStream(tIntrinsicTypeReportable<u32>(u32{1}, ignored));
  tPropertyIDReportable target(9, ignored);
  i32 status = 0;
  target.readExternal(stream, status);
  EXPECT_EQ(status, tItemStream::kStatusWrongKind);
  EXPECT_EQ(target.getData(ignored)[0], 9);
}
