// Lists of wide texts when memory runs out at any moment.

#include <gtest/gtest.h>

#include "ntoshost/executive.h"
#include "oxdiagk/tWideTextList.h"

namespace {

using _STL::wstring;
using nOXDIAG100::tWideTextList;

tWideTextList listOf(u32 count) {
  tWideTextList list;
  for (u32 index = 0; index < count; ++index) {
    EXPECT_TRUE(list.push_back(wstring(index % 2 == 0 ? L"" : L"a text of some length")));
  }
  return list;
}

u64 failEachGrowth(auto operation) {
  return ntoshost::failEachCall(ntoshost::kFaultMemory, operation);
}

// Whether the operation failed as it tells, and what is in the list then.
void expectOutcome(tWideTextList const& list, bool isDone, tWideTextList const& before,
                   tWideTextList const& after) {
  EXPECT_EQ(isDone, ntoshost::faultsInjected() == 0);
  EXPECT_EQ(list.hasFailed(), !isDone);
  EXPECT_TRUE(list == (isDone ? after : before));
}

}  // namespace

TEST(WideTextFaults, AFailedPushLeavesTheList) {
  wstring const text(L"the last text, longer than the room that is left for it in the list");
  for (u32 count : {0u, 4u, 8u}) {
    tWideTextList const before = listOf(count);
    tWideTextList after = before;
    ASSERT_TRUE(after.push_back(text));
    for (u64 n = 1; n <= 3; ++n) {
      tWideTextList list = listOf(count);
      ntoshost::failNth(ntoshost::kFaultMemory, n);
      bool const isDone = list.push_back(text);
      ntoshost::clearFaults();
      expectOutcome(list, isDone, before, after);
    }
  }
}

TEST(WideTextFaults, AFailedAssignmentLeavesTheList) {
  wstring const texts[] = {wstring(L"one"), wstring(L"a second one of some length")};
  tWideTextList after;
  ASSERT_TRUE(after.assign(texts, 2));
  tWideTextList const before = listOf(3);
  for (u64 n = 1; n <= 3; ++n) {
    tWideTextList list = listOf(3);
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    bool const isDone = list.assign(texts, 2);
    ntoshost::clearFaults();
    expectOutcome(list, isDone, before, after);
    EXPECT_EQ(isDone, n == 3);
  }
}

TEST(WideTextFaults, AFailedCopyIsEmpty) {
  tWideTextList const original = listOf(5);
  u64 const failures = failEachGrowth([&](u64) {
    tWideTextList const copy(original);
    expectOutcome(copy, !copy.hasFailed(), tWideTextList(), original);
  });
  EXPECT_EQ(failures, 2u);
}

TEST(WideTextFaults, AFailedCopyAssignmentLeavesTheList) {
  tWideTextList const original = listOf(5);
  for (u64 n = 1; n <= 3; ++n) {
    tWideTextList list = listOf(2);
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    list = original;
    ntoshost::clearFaults();
    expectOutcome(list, !list.hasFailed(), listOf(2), original);
  }
}

TEST(WideTextFaults, ASwapTakesTheFailureAlong) {
  tWideTextList failed;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_FALSE(failed.push_back(wstring()));
  ntoshost::clearFaults();
  tWideTextList other;
  other.swap(failed);
  EXPECT_TRUE(other.hasFailed());
  EXPECT_FALSE(failed.hasFailed());
}

TEST(WideTextFaults, LookingAtTheTextsTakesNoMemory) {
  tWideTextList const list = listOf(9);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  size_t characters = 0;
  for (wstring const& text : list) characters += text.size();
  ntoshost::clearFaults();
  EXPECT_EQ(characters, 4 * 21u);
}

// Texts that are not there: without memory for them nobody looks.
TEST(WideTextFaults, ATextThatIsTooLongForItsLengthAsksForNoMemory) {
  constexpr size_t kMost = 0xFFFFFFFF;
  _STL::borrowed_string<wchar_t> const longest(L"", kMost);
  _STL::borrowed_string<wchar_t> const tooLong(L"", kMost + 1);
  tWideTextList list;
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_FALSE(list.push_back(tooLong.get()));
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_FALSE(list.push_back(longest.get()));
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 1u);
  ntoshost::clearFaults();
  EXPECT_TRUE(list.hasFailed());
}
