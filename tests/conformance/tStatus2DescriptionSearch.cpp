// Searching a description.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTitleReportable.h"
#include "qelmk/tClass.h"
#include "support/callerCodes.h"
#include "support/tItemStream.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tTitleReportable;
using nQELM100::tClass;

namespace {

constexpr u32 kNoIndex = 4711;
constexpr u32 kLargest = 0xFFFFFFFF;

tClass testClass() {
  i32 status = 0;
  return tTestReportable::staticGetClass(status);
}

// Usage types 1 2 1 3 1 3; a title, tests at the even positions, others at the odd ones.
class tSearched {
 public:
  tSearched() {
    tStatus2 status;
    list.addHeader(1, status);
    list.addReportItem(2, tOtherReportable(1), status);
    list.addReportItem(1, tTestReportable(2), status);
    list.addReportItem(3, tOtherReportable(3), status);
    list.addReportItem(1, tTestReportable(4), status);
    list.addReportItem(3, tOtherReportable(5), status);
  }

  tStatus2Description list;
};

// Where each search ends up from `start` on; kNoIndex when it finds nothing, and the status stays
// clean.
u32 findUsage(tStatus2Description const& list, i32 usageType, u32 start) {
  u32 index = kNoIndex;
  tStatus2 status;
  u32 const found = list.findMatchingUsageType(usageType, index, status, start);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_EQ(found, index == kNoIndex ? u32{0} : u32{1});
  return index;
}

u32 findClass(tStatus2Description const& list, tClass const& wanted, u32 start) {
  u32 index = kNoIndex;
  tStatus2 status;
  u32 const found = list.findMatchingReportable(wanted, index, status, start);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_EQ(found, index == kNoIndex ? u32{0} : u32{1});
  return index;
}

u32 findName(tStatus2Description const& list, _STL::string const& name, u32 start) {
  u32 index = kNoIndex;
  tStatus2 status;
  u32 const found = list.findMatchingReportable(name, index, status, start);
  EXPECT_EQ(status.getCode(), 0);
  EXPECT_EQ(found, index == kNoIndex ? u32{0} : u32{1});
  return index;
}

u32 findName(tStatus2Description const& list, char const* name, u32 start = 0) {
  return findName(list, _STL::string(name), start);
}

}  // namespace

TEST(DescriptionSearch, FindsTheFirstUsageTypeFromTheStart) {
  tSearched const searched;
  EXPECT_EQ(findUsage(searched.list, 1, 0), u32{0});
  EXPECT_EQ(findUsage(searched.list, 1, 1), u32{2});
  EXPECT_EQ(findUsage(searched.list, 1, 2), u32{2});
  EXPECT_EQ(findUsage(searched.list, 1, 3), u32{4});
  EXPECT_EQ(findUsage(searched.list, 2, 0), u32{1});
  EXPECT_EQ(findUsage(searched.list, 3, 5), u32{5});
}

TEST(DescriptionSearch, FindsNoUsageTypeThatIsNotThereOrBeforeTheStart) {
  tSearched const searched;
  EXPECT_EQ(findUsage(searched.list, 4, 0), kNoIndex);
  EXPECT_EQ(findUsage(searched.list, 2, 2), kNoIndex);
  EXPECT_EQ(findUsage(searched.list, 1, 5), kNoIndex);
}

TEST(DescriptionSearch, FindsNothingFromTheEndOnAndReportsNothing) {
  tSearched const searched;
  constexpr u32 kStarts[] = {6, 7, kLargest};
  for (u32 start : kStarts) {
    EXPECT_EQ(findUsage(searched.list, 3, start), kNoIndex);
    EXPECT_EQ(findClass(searched.list, testClass(), start), kNoIndex);
    EXPECT_EQ(findName(searched.list, "tTestReportable", start), kNoIndex);
  }
}

TEST(DescriptionSearch, FindsNothingInAnEmptyList) {
  tStatus2Description const empty;
  EXPECT_EQ(findUsage(empty, 0, 0), kNoIndex);
  EXPECT_EQ(findClass(empty, testClass(), 0), kNoIndex);
  EXPECT_EQ(findName(empty, ""), kNoIndex);
}

TEST(DescriptionSearch, StartsAtTheFirstItemUnlessToldOtherwise) {
  tSearched const searched;
  tStatus2 status;
  u32 index = kNoIndex;
  EXPECT_EQ(searched.list.findMatchingUsageType(2, index, status), u32{1});
  EXPECT_EQ(index, u32{1});
}

TEST(DescriptionSearch, FindsReportablesOfAClass) {
  tSearched const searched;
  EXPECT_EQ(findClass(searched.list, testClass(), 0), u32{2});
  EXPECT_EQ(findClass(searched.list, testClass(), 3), u32{4});
  EXPECT_EQ(findClass(searched.list, testClass(), 5), kNoIndex);
}

TEST(DescriptionSearch, FindsExactlyTheClassAndNoneDerivedFromIt) {
  tSearched const searched;
  i32 status = 0;
  EXPECT_EQ(findClass(searched.list, tOtherReportable::staticGetClass(status), 0), u32{1});
  EXPECT_EQ(findClass(searched.list, tTitleReportable::staticGetClass(status), 0), u32{0});
  EXPECT_EQ(findClass(searched.list, nOXDIAG100::iVariantReportable::staticGetClass(status), 0),
            kNoIndex);
  EXPECT_EQ(findClass(searched.list, tClass(), 0), kNoIndex);
}

TEST(DescriptionSearch, FindsReportablesByTheNameOfTheirClass) {
  tSearched const searched;
  EXPECT_EQ(findName(searched.list, "nOXDIAG100::tTitleReportable"), u32{0});
  EXPECT_EQ(findName(searched.list, "tTestReportable"), u32{2});
  EXPECT_EQ(findName(searched.list, "tTestReportable", 3), u32{4});
  EXPECT_EQ(findName(searched.list, "tOtherReportable"), u32{1});
}

TEST(DescriptionSearch, ComparesNamesInLengthAndCase) {
  tSearched const searched;
  EXPECT_EQ(findName(searched.list, ""), kNoIndex);
  EXPECT_EQ(findName(searched.list, "tTestReportabl"), kNoIndex);
  EXPECT_EQ(findName(searched.list, "tTestReportable "), kNoIndex);
  EXPECT_EQ(findName(searched.list, "ttestreportable"), kNoIndex);
  EXPECT_EQ(findName(searched.list, "tTitleReportable"), kNoIndex);
}

TEST(DescriptionSearch, ComparesWhatStandsBehindANulInAName) {
  tSearched const searched;
  EXPECT_EQ(findName(searched.list, _STL::string("tTestReportable\0x", 17), 0), kNoIndex);
  EXPECT_EQ(findName(searched.list, _STL::string("tTestReportable\0", 16), 0), kNoIndex);
}

TEST(DescriptionSearch, PassesOverItemsWithoutReportable) {
  tItemStream& stream = cleanStream();
  stream.put({tItemStream::kU32, 1});
  stream.put({tItemStream::kI32, 5});
  stream.put({tItemStream::kU32, 0});
  i32 code = 0;
  tStatus2Description list;
  list.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(findUsage(list, 5, 0), u32{0});
  EXPECT_EQ(findName(list, ""), kNoIndex);
  EXPECT_EQ(findClass(list, tClass(), 0), kNoIndex);
}

TEST(DescriptionSearch, ANameWithNULIsNoNameOfAClass) {
  tSearched const searched;
  tStatus2 status;
  u32 index = kNoIndex;
  _STL::string const name("tTestReportable\0", 16);
  EXPECT_EQ(name.size(), size_t{16});
  EXPECT_EQ(searched.list.findMatchingReportable(name, index, status, 0), u32{0});
  EXPECT_EQ(index, kNoIndex);
}

TEST(DescriptionSearch, FindsNothingWithAnErrorOnEntry) {
  tSearched const searched;
  tStatus2 status(kEarlierError);
  u32 index = kNoIndex;
  EXPECT_EQ(searched.list.findMatchingUsageType(1, index, status, 0), u32{0});
  EXPECT_EQ(searched.list.findMatchingReportable(testClass(), index, status, 0), u32{0});
  EXPECT_EQ(searched.list.findMatchingReportable(_STL::string("tTestReportable"), index, status, 0),
            u32{0});
  EXPECT_EQ(index, kNoIndex);
  EXPECT_EQ(status.getCode(), kEarlierError);
}
