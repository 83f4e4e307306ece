// What the descriptions of a rack's statuses tell.

#include "savedStatuses.h"

#include "oxdiagk/tStatus2Heap.h"
#include "slotbus/component/component.h"
#include "slotbus/component/failureDescription.h"
#include "slotbus/component/reportNumbers.h"
#include "slotbus/component/statusSentences.h"

using namespace nSLOTBUS100;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Heap;

namespace {

std::string const kBus = "; Bus: {6D1F20C4-8A57-4B3E-910C-5E27B84413F9}; Time: ";

// The report of the one bad line in a text, up to the bus. A rack without devices is told of behind
// it.
std::string reportOfRack(std::string const& text) {
  auto const statuses = statusesIn(savedBytes(text));
  EXPECT_FALSE(statuses.empty()) << text;
  std::string const report = statuses.empty() ? "" : reportOf(statuses.front());
  EXPECT_NE(report.find(kBus), std::string::npos) << report;
  return report.substr(0, report.find(kBus));
}

tStatus2 failedStatus(i32 code) {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, code);
  return status;
}

tTextSpan const kOffence("1O", 2);

}  // namespace

TEST(SlotbusDescriptions, TellWhatWouldHaveBeenASlot) {
  EXPECT_EQ(reportOfRack("1O | 1 | A | d\n"),
            "The slot is not a number; Line: 1; Field: slot; Found: \"1O\"; Allowed: 1 to 99; "
            "Forms: decimal digits, 0x and hexadecimal digits");
  EXPECT_EQ(reportOfRack("\n100 | 1 | A | d\n"),
            "The slot is not in the range 1 to 99; Line: 2; Field: slot; Found: \"100\"; "
            "Allowed: 1 to 99");
}

TEST(SlotbusDescriptions, TellWhatWouldHaveBeenAnInstance) {
  EXPECT_EQ(reportOfRack("1 | x | A | d"),
            "The instance is not a number (decimal, or 0x and hexadecimal); Line: 1; Field: "
            "instance; Found: \"x\"; Allowed: 0 to 18446744073709551615; Forms: decimal digits, 0x "
            "and hexadecimal digits");
  EXPECT_EQ(reportOfRack("1 | 18446744073709551616 | A | d"),
            "The instance does not fit into 64 bits; Line: 1; Field: instance; Found: "
            "\"18446744073709551616\"; Allowed: 0 to 18446744073709551615");
}

TEST(SlotbusDescriptions, TellTheLengthsThatAreAllowed) {
  std::string const id(202, 'h');
  EXPECT_EQ(reportOfRack("1 | 1 | " + id + " | d"),
            "A hardware id is longer than 201 characters; Line: 1; Field: hardware ids; Found: \"" +
                id.substr(0, 100) + "...\"; Allowed length: 1 to 201");
  EXPECT_EQ(reportOfRack("1 | 1 | A | "),
            "The description is missing; Line: 1; Field: description; Found: \"1 | 1 | A |\"; "
            "Allowed length: 1 to 120");
}

TEST(SlotbusDescriptions, TellWhichLineCameFirst) {
  EXPECT_EQ(reportOfRack("1 | 1 | A | d\n#\n1 | 2 | A | d"),
            "The slot is taken by an earlier line; Line: 3; Field: slot; Found: \"1 | 2 | A | d\"; "
            "Earlier line: 1");
  EXPECT_EQ(reportOfRack("1 | 1 | A | d\n2 | 1 | A | d"),
            "The instance number is used by an earlier line; Line: 2; Field: instance; Found: "
            "\"2 | 1 | A | d\"; Earlier line: 1");
}

TEST(SlotbusDescriptions, NameEveryFieldWhenOneIsMissing) {
  EXPECT_EQ(reportOfRack("4"),
            "A field is missing (slot | instance | hardware ids | description); Line: 1; Field: "
            "slot, instance, hardware ids, description; Found: \"4\"");
}

TEST(SlotbusDescriptions, ShowAPointForWhatIsNotPlain) {
  EXPECT_EQ(reportOfRack("1 | 1 | A | \x80\x01"),
            "The line holds a character that is not printable ASCII; Line: 1; Found: \"1 | 1 | A | "
            "..\"");
}

TEST(SlotbusDescriptions, OfAWholeTextHaveNoLine) {
  EXPECT_EQ(reportOfRack("\xFF\xFE"
                         "a"),
            "The file is UTF-16; save it as plain text (ASCII or UTF-8); Found: \"..a\"");
}

TEST(SlotbusDescriptions, TellTheTime) {
  tSSTimeAbsolute const before = tSSTimeAbsolute::now();
  auto const statuses = statusesIn(savedBytes("4"));
  tSSTimeAbsolute const after = tSSTimeAbsolute::now();
  auto const shown = [](tSSTimeAbsolute const& time) {
    tStatus2 status;
    return utf8Of(nTRANSLATORS100::tEnglishTranslator().translateTimeAbsolute(time, status));
  };
  std::string const report = reportOf(statuses.at(0));
  std::string const time = report.substr(report.find(kBus) + kBus.size());
  EXPECT_TRUE(time == shown(before) || time == shown(after)) << time;
}

TEST(SlotbusDescriptions, HaveWordsForEveryCodeInBothLanguages) {
  auto const english = slotbusWords("english");
  auto const german = slotbusWords("german");
  for (i32 code = kStatusTextNotPlain; code >= kStatusInstanceTaken; --code) {
    EXPECT_NE(english.findUsageType(code), nullptr) << code;
    EXPECT_NE(german.findUsageType(code), nullptr) << code;
  }
  for (i32 number = kUsageLine; number <= kUsageTime; ++number) {
    EXPECT_NE(english.findUsageType(number), nullptr) << number;
    EXPECT_NE(german.findUsageType(number), nullptr) << number;
  }
  for (i32 number = kPropertySlot; number <= kPropertyNumberForm; ++number) {
    EXPECT_NE(english.findProperty(number), nullptr) << number;
    EXPECT_NE(german.findProperty(number), nullptr) << number;
  }
}

TEST(SlotbusDescriptions, SayWhatTheTraceSays) {
  auto const english = slotbusWords("english");
#define SLOTBUS_EXPECT_WORD(code, text) \
  EXPECT_EQ(_STL::wstring(english.findUsageType(code)), _STL::wstring(L"" text)) << code;
  SLOTBUS_STATUS_SENTENCES(SLOTBUS_EXPECT_WORD)
#undef SLOTBUS_EXPECT_WORD
}

TEST(SlotbusDescriptions, AreOnlyForErrors) {
  tStatus2 success;
  tStatus2 warning = failedStatus(kWarningEmptyRack);
  describeFailure({1, kOffence}, success);
  describeFailure({1, kOffence}, warning);
  EXPECT_EQ(success.getDescription(), nullptr);
  EXPECT_EQ(warning.getDescription(), nullptr);
}

TEST(SlotbusDescriptions, AreWholeOrNotThereWhenMemoryRunsOut) {
  u64 const before = ntoshost::outstandingBlocks();
  u32 whole = 0;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64) {
    tStatus2 status = failedStatus(kStatusSlotNotANumber);
    describeFailure({7, kOffence}, status);
    EXPECT_EQ(status.getCode(), kStatusSlotNotANumber);
    if (status.getDescription() == nullptr) return;
    ++whole;
    tStatus2 counting;
    auto const* const description =
        nQELM100::dynamicCast<nOXDIAG100::tStatus2Description>(status.getDescription());
    EXPECT_EQ(description->getNumberOfReportItems(counting), 8U);
  });
  EXPECT_GE(failures, 10U);
  EXPECT_GE(whole, 1U);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(SlotbusDescriptions, LeaveTheStatusHeapAsItWas) {
  i32 status = 0;
  u32 const before = tStatus2Heap::getHeap(status)->getFreeUnits();
  savedBytes("nonsense\nmore\n1 | 1\n");
  EXPECT_EQ(tStatus2Heap::getHeap(status)->getFreeUnits(), before);
}
