// A status that carries a description of report items, from where it is set to where it is read.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/dynamicCast.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/statusForms.h"
#include "support/statusOrigin.h"
#include "support/tItemTranslator.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace {

// The items that a description of three items has in a stream, its class included.
constexpr u32 kDescriptionLength = 1 + 1 + 3 * 4;

tStatus2Description const* describing(tStatus2 const& status) {
  return nQELM100::dynamicCast<tStatus2Description>(status.getDescription());
}

// A failure with three items; the description that it was set with is gone.
class tDescribed {
 public:
  tDescribed() {
    tStatus2Description description;
    addItems(description, 3);
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, description);
  }

  tOrigin origin{"slotbus", "rack.cpp"};
  tStatus2 status;
};

tItemStream& writtenStatus() {
  tDescribed const described;
  tItemStream& stream = cleanStream();
  i32 code = 0;
  described.status.writeExternal(stream, code);
  EXPECT_EQ(code, 0);
  return stream;
}

void expectItems(tStatus2 const& status) {
  ASSERT_TRUE(describing(status) != nullptr);
  EXPECT_EQ(numbersIn(*describing(status)), 123);
}

}  // namespace

TEST(DescribedStatus, CarriesACloneOfTheItems) {
  tDescribed const described;
  EXPECT_EQ(described.status.getCode(), kError);
  EXPECT_STREQ(described.status.getFileName(), "rack.cpp");
  expectItems(described.status);
}

TEST(DescribedStatus, SharesTheItemsWithItsCopies) {
  i32 const before = tTestReportable::living;
  tStatus2 copy;
  {
    tDescribed const described;
    copy = described.status;
    EXPECT_TRUE(copy.getDescription() == described.status.getDescription());
    EXPECT_EQ(tTestReportable::living, before + 3);
  }
  expectItems(copy);
  copy.setCode(0);
  EXPECT_EQ(tTestReportable::living, before);
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescribedStatus, HandsItsItemsOnToAnotherStatus) {
  tDescribed const described;
  ASSERT_NE(described.status.getDescription(), nullptr);
  tStatus2 other;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(other, kError - 1, *described.status.getDescription());
  EXPECT_TRUE(other.getDescription() != described.status.getDescription());
  expectItems(other);
}

TEST(DescribedStatus, TakesItemsLater) {
  tStatus2Description description;
  addItems(description, 3);
  tStatus2 status(kError);
  EXPECT_EQ(status.setDescription(description), u32{1});
  expectItems(status);
}

TEST(DescribedStatus, IsRenderedByATranslator) {
  tDescribed const described;
  ASSERT_TRUE(describing(described.status) != nullptr);
  _STL::wstring output;
  tStatus2 status;
  describing(described.status)->generateReport(tItemTranslator(), output, status);
  EXPECT_STREQ(tNarrowText(output).get(), "<10>1; <20>2; <30>3");
}

TEST(DescribedStatus, HasNoTextOfItsItemsInItsOwn) {
  tDescribed const described;
  char text[tStatus2::kMaxTextSize];
  described.status.toString(text, sizeof text);
  u32 const length = static_cast<u32>(__builtin_strlen(text));
  EXPECT_STREQ(text + length - 2, "\n\t");
}

TEST(DescribedStatus, WritesItsDescriptionInFrontOfTheHighHalves) {
  tItemStream const& stream = writtenStatus();
  ASSERT_EQ(stream.getCount(), kFormCount + kDescriptionLength);
  EXPECT_TRUE(stream.getItem(kFormDescriptionFlag) == unsignedItem(1));
  EXPECT_EQ(stream.getItem(kFormHighHalves).kind, tItemStream::kObject);
  EXPECT_TRUE(stream.getItem(kFormHighHalves + 1) == unsignedItem(3));
  EXPECT_TRUE(stream.getItem(kFormHighHalves + 2) == signedItem(10));
}

TEST(DescribedStatus, ComesBackFromAStream) {
  tItemStream& stream = writtenStatus();
  tStatus2 status;
  i32 code = 0;
  status.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(status.getCode(), kError);
  EXPECT_STREQ(status.getFileName(), "rack.cpp");
  expectItems(status);
  EXPECT_EQ(stream.getPosition(), stream.getCount());
}

// An older writer knew neither the marker nor the high halves.
TEST(DescribedStatus, ComesBackFromAnOlderWriter) {
  tItemStream& stream = writtenStatus();
  stream.replace(kFormDetailLength, kDetailFixedLength - 4);
  stream.erase(kFormMarker);
  for (u32 i = 0; i != 10; ++i) stream.erase(stream.getCount() - 1);
  tStatus2 status;
  i32 code = 0;
  status.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  expectItems(status);
  EXPECT_EQ(stream.getPosition(), stream.getCount());
}

// A newer writer has more fields in both fixed parts.
TEST(DescribedStatus, ComesBackFromANewerWriter) {
  tItemStream& stream = writtenStatus();
  stream.replace(kFormDetailLength, kDetailFixedLength + 2);
  stream.insert(kFormHighHalves, character('x'));
  stream.insert(kFormHighHalves, character('y'));
  stream.replace(kFormLength, kFixedLength + 1);
  stream.insert(kFormDetailLength, character('z'));
  tStatus2 status;
  i32 code = 0;
  status.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  expectItems(status);
  EXPECT_EQ(stream.getPosition(), stream.getCount());
}

TEST(DescribedStatus, IsWholeButForTheDescriptionWhereTheStreamEnds) {
  i32 const before = tTestReportable::living;
  for (u32 end = kFormHighHalves; end != kFormHighHalves + kDescriptionLength; ++end) {
    tItemStream& stream = writtenStatus();
    stream.endAt(end);
    tStatus2 status;
    i32 code = 0;
    status.readExternal(stream, code);
    EXPECT_TRUE(code < 0);
    EXPECT_EQ(status.getCode(), kError);
    EXPECT_STREQ(status.getFileName(), "rack.cpp");
    EXPECT_TRUE(status.getDescription() == nullptr);
  }
  EXPECT_EQ(tTestReportable::living, before);
  EXPECT_TRUE(isHeapUnused());
}
