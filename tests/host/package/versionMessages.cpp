// What a version check prints, to the byte. No module is started here: a client asks before it does
// anything else.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ntos/irql.h"
#include "oxdiagk/version.h"
#include "trace/capturedPrint.h"

namespace {

using nOXDIAG100::compareVersion;

constexpr tSSVersion kOldestWanted(254, 1, 2, tSSVersion::kPhaseBeta, 3, 0);
constexpr tSSVersion kNewestWanted(255, 15, 15, tSSVersion::kPhaseReleased, 4095, 0);
constexpr size_t kPrintLimit = 512;

std::string currentText() {
  i32 status = 0;
  char text[tSSVersion::kMaxTextSize];
  return nOXDIAG100::getCurrentVersion(status).toString(text);
}

std::string messageOf(std::string const& caller) {
  return "[oxdiagk] version check failed with status = -50708. " + caller +
         " desires the range 254.1.2b3 - 255.15.15f4095"
         " however the installed range is 1.0.0f7 - " +
         currentText() + "\n";
}

std::vector<std::string> printedFor(char const* component, i32 status = 0) {
  tCapturedPrint const print;
  compareVersion(kNewestWanted, kOldestWanted, status, component);
  return print.prints;
}

using tLines = std::vector<std::string>;

}  // namespace

TEST(VersionMessage, NamesTheComponent) {
  EXPECT_EQ(printedFor("slotbus"), tLines{messageOf("Component 'slotbus'")});
}

TEST(VersionMessage, SpeaksOfTheCallerWhenNoComponentIsNamed) {
  EXPECT_EQ(printedFor(nullptr), tLines{messageOf("The calling component")});
}

TEST(VersionMessage, AnEmptyNameIsAName) {
  EXPECT_EQ(printedFor(""), tLines{messageOf("Component ''")});
}

TEST(VersionMessage, ANameIsNoFormat) {
  EXPECT_EQ(printedFor("%s%n%d%%"), tLines{messageOf("Component '%s%n%d%%'")});
}

TEST(VersionMessage, AWarningBeforeItIsNotTheStatusThatIsTold) {
  EXPECT_EQ(printedFor("slotbus", 88800), tLines{messageOf("Component 'slotbus'")});
}

TEST(VersionMessage, AnEarlierErrorKeepsItQuiet) {
  EXPECT_EQ(printedFor("slotbus", -1), tLines{});
  EXPECT_EQ(printedFor(nullptr, -50708), tLines{});
}

TEST(VersionMessage, AnEarlierErrorIsNotToldOfAGoodRange) {
  tCapturedPrint const print;
  i32 status = -1;
  compareVersion(kNewestWanted, tSSVersion(0), status, "slotbus");
  EXPECT_EQ(print.prints, tLines{});
}

TEST(VersionMessage, AGoodCheckPrintsNothing) {
  tCapturedPrint const print;
  for (i32 const before : {0, 88800}) {
    i32 status = before;
    compareVersion(kNewestWanted, tSSVersion(0), status, "slotbus");
    compareVersion(kNewestWanted, tSSVersion(0), status, nullptr);
    EXPECT_EQ(status, before);
  }
  EXPECT_EQ(print.prints, tLines{});
}

TEST(VersionMessage, TellsAClientThatIsTooOldItsRange) {
  tCapturedPrint const print;
  i32 status = 0;
  compareVersion(tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 6, 0), tSSVersion(0), status,
                 "rack");
  EXPECT_EQ(print.text(),
            "[oxdiagk] version check failed with status = -50708. Component 'rack' desires the "
            "range 0.0.0d0 - 1.0.0f6 however the installed range is 1.0.0f7 - " +
                currentText() + "\n");
}

TEST(VersionMessage, IsCutWhereTheKernelCutsAPrint) {
  size_t const around = messageOf("Component ''").size();
  ASSERT_LT(around, kPrintLimit);
  for (size_t total = kPrintLimit - 1; total <= kPrintLimit + 1; ++total) {
    std::string const name(total - around, 'n');
    std::string wanted = messageOf("Component '" + name + "'");
    ASSERT_EQ(wanted.size(), total);
    wanted.resize(std::min(total, kPrintLimit));
    wanted.back() = '\n';
    EXPECT_EQ(printedFor(name.c_str()), tLines{wanted});
  }
}

TEST(VersionMessage, ANameOfAMegabyteIsCutToo) {
  std::string const name(1 << 20, 'n');
  tLines const lines = printedFor(name.c_str());
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].size(), kPrintLimit);
}

TEST(VersionMessage, ComesAtEveryIrql) {
  for (KIRQL irql = PASSIVE_LEVEL; irql <= HIGH_LEVEL; ++irql) {
    KIRQL before = 0;
    KeRaiseIrql(irql, &before);
    tLines const lines = printedFor("slotbus");
    KeLowerIrql(before);
    EXPECT_EQ(lines, tLines{messageOf("Component 'slotbus'")});
  }
}
