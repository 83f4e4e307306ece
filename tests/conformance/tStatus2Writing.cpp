// The externalized form of a status, item by item.

#include "conformance/harness.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tTestDescription.h"

using nOXDIAG100::tStatus2;

namespace {

bool isField(tItemStream const& stream, u32 index, u32 size, char const* text) {
  u32 const length = static_cast<u32>(__builtin_strlen(text));
  for (u32 i = 0; i != size; ++i) {
    char const wanted = i < length ? text[i] : '\0';
    if (!(stream.getItem(index + i) == character(wanted))) return false;
  }
  return true;
}

// A failure with the known addresses in its record.
class tFormFailure {
 public:
  tFormFailure() {
    OXDIAG_SET_STATUS(status, kFormError);
    u8* record = nullptr;
    __builtin_memcpy(&record, &status, sizeof record);
    if (record == nullptr) return;
    for (u32 i = 0; i != tStatus2::kStackTraceLength; ++i) {
      u64 const address = u64{i + 1} << 32 | (i + 1) * 0x10;
      __builtin_memcpy(record + 144 + u64{8} * i, &address, sizeof address);
    }
  }

  tOrigin origin{"abc", "rack.cpp"};
  tStatus2 status;
};

}  // namespace

TEST(StatusWriting, ASuccessWithoutDetailIsThreeNumbers) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2().writeExternal(stream, status);
  EXPECT_EQ(status, 0);
  ASSERT_EQ(stream.getCount(), u32{3});
  EXPECT_TRUE(stream.getItem(0) == unsignedItem(8));
  EXPECT_TRUE(stream.getItem(1) == signedItem(0));
  EXPECT_TRUE(stream.getItem(2) == unsignedItem(0));
}

TEST(StatusWriting, APlainCodeIsThreeNumbers) {
  tItemStream& stream = cleanStream();
  i32 status = 0;
  tStatus2(kFormError).writeExternal(stream, status);
  ASSERT_EQ(stream.getCount(), u32{3});
  EXPECT_TRUE(stream.getItem(1) == signedItem(kFormError));
  EXPECT_TRUE(stream.getItem(2) == unsignedItem(0));
}

TEST(StatusWriting, ADetailFollowsItsFlag) {
  tFormFailure const failure;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.status.writeExternal(stream, status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(stream.getCount(), u32{kFormCount});
  EXPECT_TRUE(stream.getItem(kFormLength) == unsignedItem(8));
  EXPECT_TRUE(stream.getItem(kFormCode) == signedItem(kFormError));
  EXPECT_TRUE(stream.getItem(kFormFlag) == unsignedItem(1));
  EXPECT_TRUE(stream.getItem(kFormDetailLength) == unsignedItem(181));
}

TEST(StatusWriting, NamesAreFieldsOfCharactersFilledWithZeros) {
  tFormFailure const failure;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.status.writeExternal(stream, status);
  EXPECT_TRUE(isField(stream, kFormComponent, 24, "abc"));
  EXPECT_TRUE(isField(stream, kFormFile, 101, "rack.cpp"));
}

TEST(StatusWriting, FullNamesAreWrittenWithTheirTerminator) {
  tLongText<30> const component;
  tLongText<130> const file;
  tOrigin const origin(component.get(), file.get());
  tStatus2 failure;
  OXDIAG_SET_STATUS(failure, kFormError);
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.writeExternal(stream, status);
  EXPECT_TRUE(isField(stream, kFormComponent, 24, component.tail(23)));
  EXPECT_TRUE(isField(stream, kFormFile, 101, file.tail(100)));
}

TEST(StatusWriting, LineAndCodesAreNumbers) {
  tFormFailure const failure;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.status.writeExternal(stream, status);
  EXPECT_TRUE(stream.getItem(kFormLine) == unsignedItem(failure.status.getLineNumber()));
  EXPECT_TRUE(stream.getItem(kFormDetailCode) == signedItem(kFormError));
  EXPECT_TRUE(stream.getItem(kFormDescriptionFlag) == unsignedItem(0));
  EXPECT_TRUE(stream.getItem(kFormMarker) == unsignedItem(1));
}

TEST(StatusWriting, AddressesAreWrittenInHalves) {
  tFormFailure const failure;
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.status.writeExternal(stream, status);
  for (u32 i = 0; i != 10; ++i) {
    EXPECT_TRUE(stream.getItem(kFormLowHalves + i) == unsignedItem((i + 1) * 0x10));
    EXPECT_TRUE(stream.getItem(kFormHighHalves + i) == unsignedItem(i + 1));
  }
}

TEST(StatusWriting, TheCodeOfTheDetailIsTheOneItWasMadeWith) {
  tOrigin const origin("abc", "rack.cpp");
  tStatus2 failure;
  OXDIAG_SET_STATUS(failure, 61001);
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.writeExternal(stream, status);
  EXPECT_TRUE(stream.getItem(kFormCode) == signedItem(61001));
  EXPECT_TRUE(stream.getItem(kFormDetailCode) == signedItem(61001));
}

TEST(StatusWriting, ADescriptionStandsInFrontOfTheHighHalves) {
  tFormFailure failure;
  tTestDescription const description(42);
  failure.status.setDescription(description);
  tItemStream& stream = cleanStream();
  i32 status = 0;
  failure.status.writeExternal(stream, status);
  EXPECT_EQ(stream.getCount(), u32{kFormCount} + 2);
  EXPECT_TRUE(stream.getItem(kFormDescriptionFlag) == unsignedItem(1));
  EXPECT_TRUE(stream.getItem(kFormMarker) == unsignedItem(1));
  EXPECT_TRUE(stream.getItem(kFormHighHalves).kind == tItemStream::kObject);
  EXPECT_TRUE(stream.getItem(kFormHighHalves + 1) == signedItem(42));
  EXPECT_TRUE(stream.getItem(kFormHighHalves + 2) == unsignedItem(1));
}

TEST(StatusWriting, NothingIsWrittenWithAnErrorOnEntry) {
  tFormFailure const failure;
  tItemStream& stream = cleanStream();
  i32 status = kEarlierError;
  failure.status.writeExternal(stream, status);
  EXPECT_EQ(stream.getCount(), u32{0});
  EXPECT_EQ(status, kEarlierError);
}

TEST(StatusWriting, AWarningOnEntryIsKept) {
  tItemStream& stream = cleanStream();
  i32 status = 12345;
  tStatus2().writeExternal(stream, status);
  EXPECT_EQ(stream.getCount(), u32{3});
  EXPECT_EQ(status, 12345);
}

TEST(StatusWriting, TheStreamsEndIsReportedAtEveryPosition) {
  tFormFailure failure;
  tTestDescription const description(42);
  failure.status.setDescription(description);
  for (u32 end = 0; end != kFormCount + 2; ++end) {
    tItemStream& stream = cleanStream();
    stream.endAt(end);
    i32 status = 0;
    failure.status.writeExternal(stream, status);
    EXPECT_EQ(status, tItemStream::kStatusEnded);
    EXPECT_EQ(stream.getCount(), end);
  }
}
