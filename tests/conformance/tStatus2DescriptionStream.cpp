// The externalized form of a description.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/statusCodes.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "support/callerCodes.h"
#include "support/statusForms.h"
#include "support/tBlindReader.h"
#include "support/tItemStream.h"
#include "support/tTestDescription.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2DescriptionImplementation;
using nQELM100::kStatusNoListFollows;

namespace {

// Items of the stream: the count, and four for each item of the list.
constexpr u32 kCount = 0;
constexpr u32 kItemLength = 4;
constexpr u32 streamItem(u32 index) {
  return 1 + kItemLength * index;
}

// A stream with three items, 10 20 30 with the numbers 1 2 3.
tItemStream& writtenList() {
  tItemStream& stream = cleanStream();
  tStatus2Description description;
  addItems(description, 3);
  i32 status = 0;
  description.writeExternal(stream, status);
  EXPECT_EQ(status, 0);
  return stream;
}

// A list of four items before anything is read into it.
class tReader {
 public:
  tReader() { addItems(description, 4); }

  i32 read(tItemStream& stream, i32 codeOnEntry = 0) {
    i32 status = codeOnEntry;
    description.readExternal(stream, status);
    return status;
  }
  i32 numbers() const { return numbersIn(description); }

  tStatus2Description description;
};

// Instead of the count: `code`, and a count nevertheless.
class tCountlessReader final : public nQELM100::iObjectReader {
 public:
  explicit tCountlessReader(i32 statusCode) : code(statusCode) {}

  void readU32(u32& value, i32& status) override {
    if (status < 0) return;
    value = 1;
    status = code;
    ++reads;
  }
  void readI32(i32&, i32&) override { ++reads; }
  void readCharacter(char&, i32&) override { ++reads; }
  void readI64(i64&, i32&) override { ++reads; }
  void readU64(u64&, i32&) override { ++reads; }
  void readString(_STL::string&, i32&) override { ++reads; }
  void readWideString(_STL::wstring&, i32&) override { ++reads; }
  nQELM100::tObject* readObject(i32&) override {
    ++reads;
    return nullptr;
  }
  u64 getMostItems() const override { return kUnlimitedItems; }

  u32 reads = 0;

 private:
  i32 code;
};

}  // namespace

TEST(DescriptionStream, IsTheCountAndTheItems) {
  tItemStream const& stream = writtenList();
  ASSERT_EQ(stream.getCount(), streamItem(3));
  EXPECT_TRUE(stream.getItem(kCount) == unsignedItem(3));
  for (u32 index = 0; index != 3; ++index) {
    i32 const number = static_cast<i32>(index) + 1;
    u32 const first = streamItem(index);
    EXPECT_TRUE(stream.getItem(first) == signedItem(number * 10));
    EXPECT_TRUE(stream.getItem(first + 1) == unsignedItem(1));
    EXPECT_EQ(stream.getItem(first + 2).kind, tItemStream::kObject);
    EXPECT_TRUE(stream.getItem(first + 3) == signedItem(number));
  }
}

TEST(DescriptionStream, OfAnEmptyListIsAZero) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2Description().writeExternal(stream, status);
  ASSERT_EQ(stream.getCount(), u32{1});
  EXPECT_TRUE(stream.getItem(kCount) == unsignedItem(0));
}

TEST(DescriptionStream, OfTheImplementationIsTheSame) {
  tItemStream& stream = writtenList();
  tStatus2DescriptionImplementation implementation;
  i32 status = 0;
  implementation.readExternal(stream, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(implementation.getCount(), u32{3});
  tItemStream& again = cleanStream();
  implementation.writeExternal(again, status);
  EXPECT_EQ(again.getCount(), streamItem(3));
  EXPECT_TRUE(again.getItem(kCount) == unsignedItem(3));
}

TEST(DescriptionStream, IsNotWrittenWithAnErrorOnEntry) {
  tItemStream& stream = cleanStream();
  i32 status = kEarlierError;
  tStatus2Description().writeExternal(stream, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(stream.getCount(), u32{0});
}

TEST(DescriptionStream, TellsWhenTheWriterHasNoRoom) {
  tItemStream& stream = cleanStream();
  stream.endAt(streamItem(1));
  tStatus2Description description;
  addItems(description, 3);
  i32 status = 0;
  description.writeExternal(stream, status);
  EXPECT_EQ(status, tItemStream::kStatusEnded);
  EXPECT_EQ(stream.getCount(), streamItem(1));
}

TEST(DescriptionStream, ReplacesTheList) {
  i32 const before = tTestReportable::living;
  tReader reader;
  EXPECT_EQ(reader.read(writtenList()), 0);
  EXPECT_EQ(reader.numbers(), 123);
  tStatus2 status;
  EXPECT_EQ(reader.description.getUsageTypeAtIndex(2, status), 30);
  EXPECT_EQ(tTestReportable::living, before + 3);
}

TEST(DescriptionStream, ComesBackEqual) {
  tReader reader;
  tStatus2Description original;
  addItems(original, 3);
  reader.read(writtenList());
  EXPECT_TRUE(reader.description == original);
}

TEST(DescriptionStream, OfAnEmptyListEmptiesTheList) {
  tItemStream& stream = cleanStream();
  stream.put(unsignedItem(0));
  tReader reader;
  EXPECT_EQ(reader.read(stream), 0);
  EXPECT_EQ(reader.numbers(), 0);
}

TEST(DescriptionStream, KeepsAWarningOnEntry) {
  tReader reader;
  EXPECT_EQ(reader.read(writtenList(), kEarlierWarning), kEarlierWarning);
  EXPECT_EQ(reader.numbers(), 123);
}

TEST(DescriptionStream, IsNotReadWithAnErrorOnEntry) {
  tItemStream& stream = writtenList();
  tReader reader;
  EXPECT_EQ(reader.read(stream, kEarlierError), kEarlierError);
  EXPECT_EQ(reader.numbers(), 1234);
  EXPECT_EQ(stream.getPosition(), u32{0});
}

TEST(DescriptionStream, LeavesTheListWhenTheCountCannotBeRead) {
  tReader reader;
  EXPECT_EQ(reader.read(cleanStream()), tItemStream::kStatusEnded);
  EXPECT_EQ(reader.numbers(), 1234);
}

TEST(DescriptionStream, LeavesTheListWhenTheReaderFailsOrSaysThatNoneFollows) {
  constexpr i32 kCodes[] = {-1, kStatusNoListFollows};
  for (i32 code : kCodes) {
    tCountlessReader countless(code);
    tReader reader;
    i32 status = 0;
    reader.description.readExternal(countless, status);
    EXPECT_EQ(status, code);
    EXPECT_EQ(reader.numbers(), 1234);
    EXPECT_EQ(countless.reads, u32{1});
  }
}

TEST(DescriptionStream, IsReadInSpiteOfAnyOtherWarning) {
  constexpr i32 kCodes[] = {1, kStatusNoListFollows - 1, kStatusNoListFollows + 1};
  for (i32 code : kCodes) {
    tCountlessReader other(code);
    tReader reader;
    i32 status = 0;
    reader.description.readExternal(other, status);
    EXPECT_GT(other.reads, u32{1});
  }
}

TEST(DescriptionStream, IsReadInSpiteOfAnEarlierListThatWasNotThere) {
  tReader reader;
  EXPECT_EQ(reader.read(writtenList(), kStatusNoListFollows), kStatusNoListFollows);
  EXPECT_EQ(reader.numbers(), 123);
}

TEST(DescriptionStream, LeavesTheItemThatFailsAndThoseBehindItEmpty) {
  i32 const before = tTestReportable::living;
  for (u32 end = streamItem(0); end < streamItem(3); ++end) {
    tItemStream& stream = writtenList();
    stream.insert(end, character('x'));
    tReader reader;
    EXPECT_EQ(reader.read(stream), tItemStream::kStatusWrongKind);
    u32 const whole = (end - 1) / kItemLength;
    tStatus2 status;
    EXPECT_EQ(reader.description.getNumberOfReportItems(status), u32{3});
    for (u32 index = 0; index < 3; ++index) {
      i32 const usageType = index < whole ? 10 * (static_cast<i32>(index) + 1) : 0;
      EXPECT_EQ(reader.description.getUsageTypeAtIndex(index, status), usageType);
      bool const isThere = reader.description.getReportablePtrAtIndex(index, status) != nullptr;
      EXPECT_EQ(isThere, index < whole);
    }
  }
  EXPECT_EQ(tTestReportable::living, before);
}

TEST(DescriptionStream, KeepsPlacesForSoManyUnreadItemsAndNoMore) {
  constexpr u32 kMost = tStatus2Description::kMostUnreadItems;
  constexpr u32 kWhole = 2;
  constexpr u32 kCounts[] = {kWhole + 1,         kWhole + 2,         kWhole + kMost,
                             kWhole + 1 + kMost, kWhole + 2 + kMost, 0xFFFFFFFF};
  for (u32 count : kCounts) {
    u8 bytes[8 + 4 + 8 * kWhole] = {'Q', 'E', 'L', 'M', 1};
    __builtin_memcpy(bytes + 8, &count, sizeof(count));
    i32 status = 0;
    tBlindReader blind(bytes, sizeof(bytes), status);
    tReader reader;
    reader.description.readExternal(blind, status);
    EXPECT_EQ(status, nQELM100::kStatusStreamEnded);
    constexpr u32 kLargestCount = kWhole + 1 + kMost;
    tStatus2 asking;
    EXPECT_EQ(reader.description.getNumberOfReportItems(asking),
              count < kLargestCount ? count : kLargestCount);
    EXPECT_EQ(reader.description.getUsageTypeAtIndex(kWhole, asking), 0);
    EXPECT_TRUE(reader.description.getReportablePtrAtIndex(kWhole, asking) == nullptr);
    EXPECT_EQ(asking.getCode(), 0);
  }
}

TEST(DescriptionStream, RefusesAReportableOfAForeignClass) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tForeignObject const foreign;
  stream.put(unsignedItem(1));
  stream.put(signedItem(10));
  stream.put(unsignedItem(1));
  stream.writeObject(&foreign, status);
  tReader reader;
  EXPECT_EQ(reader.read(stream), nQELM100::kStatusClassMismatch);
  tStatus2 clean;
  EXPECT_EQ(reader.description.getNumberOfReportItems(clean), u32{1});
  EXPECT_TRUE(reader.description.getReportablePtrAtIndex(0, clean) == nullptr);
}

TEST(DescriptionStream, RefusesACountThatTheStreamCannotHold) {
  constexpr u32 kCounts[] = {7, 1000000, 0x80000000, 0xFFFFFFFF};
  for (u32 count : kCounts) {
    tItemStream& stream = writtenList();
    stream.replace(kCount, count);
    tReader reader;
    EXPECT_EQ(reader.read(stream), kStatusOutOfMemory);
    EXPECT_EQ(reader.numbers(), 0);
    EXPECT_EQ(stream.getPosition(), u32{1});
  }
}

TEST(DescriptionStream, TakesACountThatTheStreamCanJustHold) {
  tItemStream& stream = cleanStream();
  stream.put(unsignedItem(2));
  for (u32 i = 0; i != 2; ++i) {
    stream.put(signedItem(10));
    stream.put(unsignedItem(0));
  }
  tReader reader;
  EXPECT_EQ(reader.read(stream), 0);
  tStatus2 status;
  EXPECT_EQ(reader.description.getNumberOfReportItems(status), u32{2});
}

TEST(DescriptionStream, MergesTheStatusOfTheImplementationFirst) {
  tItemStream& stream = writtenList();
  tStatus2DescriptionImplementation warned(kEarlierWarning);
  i32 status = 0;
  warned.readExternal(stream, status);
  EXPECT_EQ(status, kEarlierWarning);
  EXPECT_EQ(warned.getCount(), u32{3});
  stream.rewind();
  tStatus2DescriptionImplementation failed(kEarlierError);
  failed.readExternal(stream, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(failed.getCount(), u32{0});
  EXPECT_EQ(stream.getPosition(), u32{0});
}
