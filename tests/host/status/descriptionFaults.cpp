// Descriptions when memory is exhausted: the first, the second, the third ... allocation of each
// operation fails, in the pool and in the status heap. Each time the description is as it was, the
// status says why, and nothing is left behind.

#include <optional>
#include <string>

#define OXDIAG_COMPONENT "test"

#include "oxdiagk/statusCodes.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tReportItem.h"
#include "oxdiagk/tStatus2Description.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "support/callerCodes.h"
#include "support/heapRecord.h"
#include "support/tItemStream.h"
#include "support/tItemTranslator.h"
#include "trace/startedModules.h"

using nOXDIAG100::kStatusNoImplementation;
using nOXDIAG100::tIntrinsicTypeReportable;
using nOXDIAG100::tReportItem;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tStatus2DescriptionImplementation;
using nQELM100::kStatusClassMismatch;
using nQELM100::tObject;

namespace {

constexpr u32 kItems = 4;  // a list of four is full: the next one makes it grow

using tNumber = tIntrinsicTypeReportable<i32>;

// A description with four numbers, and everything made anew for a comparison.
class tFilled {
 public:
  explicit tFilled(u32 count = kItems) {
    tStatus2 status;
    for (u32 index = 0; index < count; ++index) {
      i32 const number = static_cast<i32>(index) + 1;
      description.addReportItem(number, tNumber(number, status), status);
    }
    EXPECT_EQ(status.getCode(), 0);
  }

  void expectUnchanged() const { EXPECT_TRUE(description == tFilled().description); }

  tStatus2Description description;
};

// Runs `operation` on a filled description with its first, second, third ... pool allocation
// failing, until none fails. A failure is kStatusOutOfMemory in the status and leaves the
// description unchanged; nothing else fails. Returns the number of failures.
template <class Operation>
u64 failEachAllocation(Operation operation) {
  for (u64 n = 1;; ++n) {
    u64 const before = ntoshost::outstandingBlocks();
    bool failed = false;
    {
      tFilled filled;
      tStatus2 status;
      ntoshost::failNth(ntoshost::kFaultMemory, n);
      operation(filled.description, status);
      ntoshost::clearFaults();
      failed = ntoshost::faultsInjected() != 0;
      EXPECT_EQ(status.getCode(), failed ? kStatusOutOfMemory : 0) << "allocation " << n;
      if (failed) filled.expectUnchanged();
    }
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
    EXPECT_TRUE(isHeapUnused());
    if (!failed) return n - 1;
  }
}

// A heap with one free block of so many units.
class tShortHeap {
 public:
  explicit tShortHeap(u32 units) {
    void* const block = units != 0 ? takeBlock(static_cast<i32>((units - 1) * 16)) : nullptr;
    full.emplace();
    if (block != nullptr) giveBack(block);
  }

 private:
  std::optional<tFullHeap> full;
};

// Runs `operation` in a status heap with room for 0, 1, 2 ... units, until there is room for 64: it
// returns whether it was done. Nothing may be left in the heap. Returns the number of sizes for
// which it was not done, which are all in front of those for which it was.
template <class Operation>
u32 shortenHeap(Operation operation) {
  u32 failures = 0;
  for (u32 units = 0; units != 64; ++units) {
    tShortHeap const shortened(units);
    u32 const blocks = theHeap().getAllocatedBlocks();
    bool const done = operation();
    EXPECT_EQ(theHeap().getAllocatedBlocks(), blocks) << units << " units";
    EXPECT_TRUE(done || units == failures) << units << " units";
    failures += done ? 0 : 1;
  }
  return failures;
}

// Leaves titles alone: what it makes of half a report is the beginning of the whole one.
class tPlainTranslator final : public tItemTranslator {
  void applyTitle(_STL::wstring&, tStatus2&) const override {}
};

std::u16string textOf(tStatus2Description const& description, tStatus2& status) {
  _STL::wstring output;
  description.generateReport(tPlainTranslator(), output, status);
  std::u16string text;
  for (wchar_t character : output) text.push_back(static_cast<char16_t>(character));
  return text;
}

// An item that could not be made a copy of another.
tReportItem failedItem() {
  tStatus2 clean;
  tReportItem const original(9, tNumber(9, clean), clean);
  tReportItem item;
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  item = original;
  ntoshost::clearFaults();
  return item;
}

i32 codeAfterCloning(nQELM100::iCloneable const& original) {
  i32 code = 0;
  tObject* const clone = original.clone(code);
  EXPECT_EQ(clone == nullptr, code < 0);
  if (clone != nullptr) clone->getClass(code).deleteInstance(clone, code);
  return code;
}

// A status with a filled description, as bytes.
class tBytes {
 public:
  tBytes() {
    tFilled const filled;
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, filled.description);
    i32 code = 0;
    nQELM100::tBinaryObjectWriter writer(bytes, sizeof bytes);
    status.writeExternal(writer, code);
    writer.finish(code);
    EXPECT_EQ(code, 0);
    size = writer.getSize();
  }

  tStatus2 read(i32& code) const {
    nQELM100::tBinaryObjectReader reader(bytes, size, code);
    tStatus2 status;
    status.readExternal(reader, code);
    return status;
  }

 private:
  u8 bytes[1024];
  size_t size;
};

}  // namespace

TEST(DescriptionFaults, AFailedAddLeavesTheList) {
  tStatus2 clean;
  tNumber const number(9, clean);
  u64 const failures = failEachAllocation([&](tStatus2Description& description, tStatus2& status) {
    description.addReportItem(9, number, status);
  });
  EXPECT_EQ(failures, 2u);  // the clone, the list of items
}

TEST(DescriptionFaults, AFailedInsertionLeavesTheList) {
  tStatus2 clean;
  tNumber const number(9, clean);
  u64 const failures = failEachAllocation([&](tStatus2Description& description, tStatus2& status) {
    description.insertReportItemAtIndex(1, 9, number, status);
  });
  EXPECT_EQ(failures, 2u);
}

TEST(DescriptionFaults, AFailedReplacementLeavesTheItem) {
  tStatus2 clean;
  tNumber const number(9, clean);
  u64 const failures = failEachAllocation([&](tStatus2Description& description, tStatus2& status) {
    description.replaceReportItemAtIndex(1, 9, number, status);
  });
  EXPECT_EQ(failures, 1u);
}

TEST(DescriptionFaults, AFailedHeaderOrNewlineLeavesTheList) {
  EXPECT_EQ(failEachAllocation([](tStatus2Description& description, tStatus2& status) {
              description.addHeader(9, status);
            }),
            2u);
  EXPECT_EQ(failEachAllocation([](tStatus2Description& description, tStatus2& status) {
              description.addNewline(status);
            }),
            2u);
}

TEST(DescriptionFaults, FailuresSayWhichSourceSawThem) {
  tStatus2 clean;
  tNumber const number(9, clean);
  char const* const sources[] = {"source/status/tReportItem",
                                 "source/status/tStatus2DescriptionImplementation"};
  for (u64 n = 1; n <= 2; ++n) {
    tFilled filled;
    tStatus2 status;
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    filled.description.addReportItem(9, number, status);
    ntoshost::clearFaults();
    EXPECT_STREQ(status.getComponentName(), "oxdiagk");
    EXPECT_STREQ(status.getFileName(), sources[n - 1]);
  }
}

TEST(DescriptionFaults, TakingOutTakesNoMemory) {
  EXPECT_EQ(failEachAllocation([](tStatus2Description& description, tStatus2& status) {
              description.removeReportItemAtIndex(0, status);
              description.makeEmpty(status);
            }),
            0u);
}

TEST(DescriptionFaults, AskingTakesNoMemoryButForAName) {
  EXPECT_EQ(failEachAllocation([](tStatus2Description& description, tStatus2& status) {
              u32 index = 0;
              i32 code = 0;
              EXPECT_EQ(description.findMatchingUsageType(3, index, status), 1u);
              EXPECT_EQ(
                  description.findMatchingReportable(tNumber::staticGetClass(code), index, status),
                  1u);
              EXPECT_EQ(description.getUsageTypeAtIndex(3, status), 4);
              EXPECT_TRUE(description == description);
            }),
            0u);
  EXPECT_EQ(failEachAllocation([](tStatus2Description& description, tStatus2& status) {
              _STL::string name;
              description.getReportableClassNameAtIndex(0, name, status);
              EXPECT_EQ(name.empty(), status.isError());
            }),
            1u);
}

TEST(DescriptionFaults, AFailedReportIsTheBeginningOfTheWholeOne) {
  tStatus2 clean;
  std::u16string const whole = textOf(tFilled().description, clean);
  EXPECT_EQ(whole, u"<1>1; <2>2; <3>3; <4>4");
  u64 const failures = failEachAllocation([&](tStatus2Description& description, tStatus2& status) {
    std::u16string const text = textOf(description, status);
    EXPECT_EQ(text, whole.substr(0, text.size()));
    EXPECT_EQ(text == whole, !status.isError());
  });
  EXPECT_GE(failures, kItems);
}

TEST(DescriptionFaults, AFailedCloneIsNone) {
  u64 const failures = failEachAllocation([](tStatus2Description& description, tStatus2& status) {
    status.setCode(codeAfterCloning(description));
  });
  EXPECT_EQ(failures, 1 + u64{kItems});
}

TEST(DescriptionFaults, AFailedCloneOfAnItemIsNone) {
  tStatus2 clean;
  tReportItem const item(9, tNumber(9, clean), clean);
  i32 const codes[] = {kStatusClassMismatch, kStatusOutOfMemory, 0};
  for (u64 n = 1; n <= 3; ++n) {
    ntoshost::failNth(ntoshost::kFaultMemory, n);
    EXPECT_EQ(codeAfterCloning(item), codes[n - 1]);
    ntoshost::clearFaults();
  }
}

TEST(DescriptionFaults, AnItemThatIsMovedTakesItsFailureAlong) {
  tReportItem item = failedItem();
  EXPECT_TRUE(item.hasFailed());
  tReportItem const taken(_STL::move(item));
  EXPECT_TRUE(taken.hasFailed());
  EXPECT_FALSE(item.hasFailed());  // NOLINT(bugprone-use-after-move): an item without reportable
}

TEST(DescriptionFaults, AnItemThatIsReadHasNotFailedAnyMore) {
  tItemStream& stream = cleanStream();
  i32 code = 0;
  tReportItem().writeExternal(stream, code);
  tReportItem item = failedItem();
  item.readExternal(stream, code);
  EXPECT_EQ(code, 0);
  EXPECT_FALSE(item.hasFailed());
}

TEST(DescriptionFaults, AStatusWithoutItsDescriptionKeepsItsDetail) {
  u64 const failures = failEachAllocation([](tStatus2Description& description, tStatus2& status) {
    tStatus2 described;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(described, kError, description);
    EXPECT_EQ(described.getCode(), kError);
    EXPECT_TRUE(described.hasDetail());
    if (described.getDescription() == nullptr) status.setCode(kStatusOutOfMemory);
  });
  EXPECT_EQ(failures, 1 + u64{kItems});
}

TEST(DescriptionFaults, AListThatCannotBeReadIsReadAsFarAsThereWasMemory) {
  tBytes const bytes;
  tFilled const whole;
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    i32 code = 0;
    {
      tStatus2 const status = bytes.read(code);
      EXPECT_EQ(status.getCode(), kError);
      EXPECT_EQ(status.getDescription() == nullptr, code < 0);
      if (code == 0) {
        auto const* const description =
            nQELM100::dynamicCast<tStatus2Description>(status.getDescription());
        ASSERT_NE(description, nullptr);
        EXPECT_TRUE(*description == whole.description);
      }
    }
    EXPECT_EQ(code, ntoshost::faultsInjected() != 0 ? kStatusOutOfMemory : 0);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  });
  EXPECT_EQ(failures, 1 + u64{kItems});
}

TEST(DescriptionInShortHeap, IsMadeWithItsListOrTellsThatItHasNone) {
  u32 const failures = shortenHeap([] {
    tStatus2 status;
    tStatus2Description const description(status);
    EXPECT_TRUE(status.getCode() == 0 || status.getCode() == kStatusOutOfMemory);
    tStatus2 asking;
    description.getNumberOfReportItems(asking);
    EXPECT_EQ(asking.getCode(), status.isError() ? kStatusNoImplementation : 0);
    return !status.isError();
  });
  EXPECT_GE(failures, 2u);
}

TEST(DescriptionInShortHeap, IsClonedInWholeOrNotAtAll) {
  tFilled const filled;
  u32 const failures = shortenHeap([&] {
    i32 const code = codeAfterCloning(filled.description);
    EXPECT_TRUE(code == 0 || code == kStatusClassMismatch || code == kStatusOutOfMemory);
    return code == 0;
  });
  EXPECT_GE(failures, 4u);
}

TEST(DescriptionInShortHeap, ItsListIsClonedInWholeOrNotAtAll) {
  tStatus2 clean;
  tStatus2DescriptionImplementation list;
  list.add(9, tNumber(9, clean), clean);
  u32 const failures = shortenHeap([&] {
    i32 const code = codeAfterCloning(list);
    EXPECT_TRUE(code == 0 || code == kStatusClassMismatch);
    return code == 0;
  });
  EXPECT_GE(failures, 2u);
}

TEST(DescriptionInShortHeap, IsAttachedInWholeOrNotAtAll) {
  tFilled const filled;
  u32 const failures = shortenHeap([&] {
    tStatus2 status;
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kError, filled.description);
    EXPECT_EQ(status.getCode(), kError);
    return status.getDescription() != nullptr;
  });
  EXPECT_GE(failures, 16u);
}

TEST(DescriptionInShortHeap, IsReadInWholeOrNotAtAll) {
  tBytes const bytes;
  u32 const failures = shortenHeap([&] {
    i32 code = 0;
    tStatus2 const status = bytes.read(code);
    EXPECT_EQ(status.getCode(), kError);
    bool const hasDescription = status.getDescription() != nullptr;
    EXPECT_TRUE(!hasDescription || code == 0);
    return hasDescription;
  });
  EXPECT_GE(failures, 16u);
}

TEST(DescriptionInShortHeap, IsFilledAndRenderedWithoutRoom) {
  tFilled filled;
  u32 const failures = shortenHeap([&] {
    tStatus2 status;
    filled.description.addReportItem(5, tNumber(5, status), status);
    filled.description.removeReportItemAtIndex(kItems, status);
    EXPECT_EQ(textOf(filled.description, status), u"<1>1; <2>2; <3>3; <4>4");
    return status.getCode() == 0;
  });
  EXPECT_EQ(failures, 0u);
}

TEST(DescriptionInShortHeap, KeepsTheCodesOfItsFailures) {
  tFilled filled;
  u32 const failures = shortenHeap([&] {
    tStatus2 status;
    filled.description.removeReportItemAtIndex(kItems, status);
    EXPECT_EQ(status.getCode(), nOXDIAG100::kStatusIndexOutOfRange);
    return status.hasDetail();
  });
  EXPECT_EQ(failures, 16u);
}
