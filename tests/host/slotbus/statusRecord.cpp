// Which statuses of a rack are saved, and how.

#include "savedStatuses.h"

using namespace nSLOTBUS100;
using nOXDIAG100::tStatus2;

namespace {

std::string linesOf(u32 count) {
  std::string text;
  for (u32 line = 0; line < count; ++line) text += "nonsense\n";
  return text;
}

u32 countStatuses(std::string const& rackText) {
  u32 count = 0;
  forEachStatus(savedBytes(rackText), [&](tStatus2 const&) { ++count; });
  return count;
}

}  // namespace

TEST(SlotbusRecord, OfAGoodRackIsEmpty) {
  EXPECT_EQ(savedBytes("1 | 1 | A | d\n"), "");
}

TEST(SlotbusRecord, HoldsTheStatusesInTheOrderOfTheLines) {
  auto const statuses = statusesIn(savedBytes("x | 1 | A | d\n1 | 1 | A | d\n1 | 2 | A | d\n4\n"));
  ASSERT_EQ(statuses.size(), 3U);
  EXPECT_EQ(statuses[0].getCode(), kStatusSlotNotANumber);
  EXPECT_EQ(statuses[1].getCode(), kStatusSlotTaken);
  EXPECT_EQ(statuses[2].getCode(), kStatusMissingField);
}

TEST(SlotbusRecord, KeepsOriginAndDescription) {
  auto const statuses = statusesIn(savedBytes("4"));
  EXPECT_STREQ(statuses.at(0).getComponentName(), "slotbus");
  EXPECT_GT(statuses.at(0).getLineNumber(), 0U);
  EXPECT_NE(reportOf(statuses.at(0)), "(no description)");
}

TEST(SlotbusRecord, HoldsTheWarningAboutAnEmptyRack) {
  auto const statuses = statusesIn(savedBytes("# nothing\n"));
  ASSERT_EQ(statuses.size(), 1U);
  EXPECT_EQ(statuses[0].getCode(), kWarningEmptyRack);
  EXPECT_EQ(statuses[0].getDescription(), nullptr);
}

TEST(SlotbusRecord, HasRoomForAllFailuresThatAreTold) {
  u32 const most = tRackReader::kMaxTracedFailures;
  // The empty rack is told of as well.
  EXPECT_EQ(countStatuses(linesOf(most - 1)), most);
  EXPECT_EQ(countStatuses(linesOf(most)), most + 1);
  EXPECT_EQ(countStatuses(linesOf(most + 1)), most + 1);
  std::string const longest(1000, 'x');
  std::string text;
  for (u32 line = 0; line < most; ++line) text += longest + "\n";
  EXPECT_EQ(countStatuses(text), most + 1);
}

TEST(SlotbusRecord, OnlyCountsWhatDoesNotFit) {
  tStatusRecord record(false);
  ASSERT_TRUE(record.allocate());
  tStatus2 const status(-5);
  u32 added = 0;
  size_t before = 0;
  while (record.getMissingCount() == 0) {
    before = record.getLength();
    record.add(status);
    ++added;
  }
  EXPECT_EQ(record.getLength(), before);
  EXPECT_EQ(added - 1, tStatusRecord::kSize / 20);  // a header and three numbers each
  record.add(status);
  EXPECT_EQ(record.getMissingCount(), 2U);
}

TEST(SlotbusRecord, WithoutMemoryOnlyCounts) {
  tStatusRecord record(false);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_FALSE(record.allocate());
  ntoshost::clearFaults();
  record.add(tStatus2(-5));
  EXPECT_EQ(record.getLength(), 0U);
  EXPECT_EQ(record.getMissingCount(), 1U);
}
