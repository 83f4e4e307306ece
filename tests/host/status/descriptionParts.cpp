// The parts behind a description and a status, called as nobody else calls them.

#include <gtest/gtest.h>

#include "oxdiagk/reportableClass.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tPropertyIDReportable.h"
#include "oxdiagk/tReportText.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "status/tStatus2Implementation.h"
#include "support/callerCodes.h"
#include "support/tItemStream.h"
#include "support/tItemTranslator.h"
#include "support/tTestTranslator.h"
#include "trace/startedModules.h"
#include "vexk/statusCodes.h"

namespace {

using namespace nOXDIAG100;

// Gives every usage type a text of this length.
class tLongWinded final : public tItemTranslator {
 public:
  explicit tLongWinded(size_t wantedLength) : length(wantedLength) {}

  _STL::wstring translateUsageType(i32, tStatus2&) const override {
    _STL::wstring text;
    for (size_t index = 0; index < length; ++index) text.append(L"x", 1);
    return text;
  }

 private:
  size_t const length;
};

// Has no memory for the names of properties.
class tSpoiledNames final : public tTestTranslator {
 public:
  _STL::wstring translatePropertyID(i32, tStatus2&) const override {
    _STL::wstring text;
    spoil(text);
    return text;
  }
};

void addItems(tStatus2DescriptionImplementation& list, i32 count) {
  tStatus2 status;
  for (i32 usage = 0; usage < count; ++usage) {
    list.add(usage, tIntrinsicTypeReportable<i32>(usage, status), status);
  }
  EXPECT_EQ(status.getCode(), 0);
}

size_t lengthOfReport(u32 items, size_t usageLength) {
  tStatus2DescriptionImplementation list;
  addItems(list, static_cast<i32>(items));
  tStatus2 status;
  _STL::wstring output;
  list.generateReport(tLongWinded(usageLength), output, status);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_FALSE(output.hasFailed());
  return output.size();
}

}  // namespace

TEST(DescriptionParts, ReportsOfLongItemsAreWhole) {
  size_t const rest = lengthOfReport(3, 0);
  for (size_t length : {100u, 2047u, 2048u, 4096u, 5000u}) {
    EXPECT_EQ(lengthOfReport(3, length), 3 * length + rest) << length;
  }
}

TEST(DescriptionParts, NothingIsCopiedWithAnEarlierError) {
  tStatus2DescriptionImplementation list;
  tStatus2DescriptionImplementation copy;
  addItems(list, 2);
  i32 status = kEarlierError;
  copy.copyItems(list, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(copy.getCount(), 0u);
}

TEST(DescriptionParts, AnItemWithoutReportableNamesNoClass) {
  tItemStream& stream = cleanStream();
  for (u32 const value : {1u, 5u, 0u}) {
    stream.put({value == 5 ? tItemStream::kI32 : tItemStream::kU32, value});
  }
  tStatus2DescriptionImplementation list;
  i32 reading = 0;
  list.readExternal(stream, reading);
  ASSERT_EQ(reading, 0);
  tStatus2 status;
  _STL::string name("before");
  list.getReportableClassName(0, name, status);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_TRUE(name.empty());
}

TEST(DescriptionParts, ADetailIsNotReadWithAnEarlierError) {
  tItemStream stream;
  tStatus2Implementation detail(-1, "rack", "rack.cpp", 7, nullptr);
  i32 status = kEarlierError;
  detail.readExternal(stream, status);
  EXPECT_EQ(status, kEarlierError);
  EXPECT_EQ(stream.getPosition(), 0u);
  EXPECT_STREQ(detail.getComponentName(), "rack");
}

TEST(ReportableFailure, IsNotRecordedOverAnEarlierError) {
  tStatus2 status(kEarlierError);
  recordReportableFailure(status, -1, {"source", 7});
  EXPECT_EQ(status.getCode(), kEarlierError);
  EXPECT_FALSE(status.hasDetail());
}

// A text that failed is told of, not left out.
TEST(ReportableFailure, OfATextIsRecordedWhereEmptyTextsAreLeftOut) {
  tStatus2 status;
  tPropertyIDReportable const property(7, status);
  _STL::wstring output;
  property.generateReport(tSpoiledNames(), output, status);
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
}

// A first item of 4000 characters, and short ones behind it.
TEST(DescriptionParts, ALongFirstItemMakesNoRoomForManyAsLong) {
  class tLongFirst final : public tItemTranslator {
   public:
    _STL::wstring translateUsageType(i32 usageType, tStatus2& status) const override {
      return usageType == 0 ? tLongWinded(4000).translateUsageType(usageType, status)
                            : _STL::wstring();
    }
  };
  tStatus2DescriptionImplementation list;
  addItems(list, 1000);
  tStatus2 status;
  _STL::wstring output;
  list.generateReport(tLongFirst(), output, status);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_LT(output.capacity(), 4 * output.size());
}

TEST(ReportText, AppendsNothingOnceThereIsAnError) {
  tStatus2 status(kEarlierError);
  tFullTranslator const translator;
  _STL::wstring output(L"before");
  tReportText report(translator, output, status, {"source", 7});
  report.append(_STL::wstring(L"text"));
  report.appendEmptyContainer();
  EXPECT_TRUE(output == L"before");
  EXPECT_EQ(translator.calls, 0u);
  EXPECT_EQ(status.getCode(), kEarlierError);
}
