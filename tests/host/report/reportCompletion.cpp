// What the shell offers behind words of oxdiagreport.

#include "report/reportTest.h"
#include "shellCompletion.h"

namespace {

class ReportCompletion : public tReportTest {
 protected:
  // What may stand for the last of these words, sorted, in a folder with these files.
  std::string offered(std::string const& words) const {
    write("rack.statuses", "");
    write("red.txt", "");
    std::string const script = "cd '" + pathOf("") + "' && " +
                               completionOf("oxdiagreport", "oxdiagreport", words) + kPrintSorted;
    return runProgram({"bash", "-c", script}).output;
  }
};

}  // namespace

TEST_F(ReportCompletion, OffersOptions) {
  EXPECT_EQ(offered("--"), "--format --help --language --symbols --version --words\n");
  EXPECT_EQ(offered("--format json --"), "--language --symbols --words\n");
  EXPECT_EQ(offered("--language german --format json --symbols . --"), "--words\n");
  EXPECT_EQ(offered("--help ''"), "\n");
}

TEST_F(ReportCompletion, OffersValuesOfAnOption) {
  EXPECT_EQ(offered("--format ''"), "json text\n");
  EXPECT_EQ(offered("--language g"), "german\n");
  EXPECT_EQ(offered("--format r"), "\n");
  EXPECT_EQ(offered("--words ra"), "rack.statuses\n");
  EXPECT_EQ(offered("--symbols r"), "\n");
}

TEST_F(ReportCompletion, OffersOneFile) {
  EXPECT_EQ(offered("ra"), "rack.statuses\n");
  EXPECT_EQ(offered("--format json r"), "rack.statuses red.txt\n");
  EXPECT_EQ(offered("rack.statuses r"), "\n");
}

TEST_F(ReportCompletion, OffersOnlyWhatIsAccepted) {
  std::string const file = save("");
  for (char const* format : {"text", "json"}) {
    for (char const* language : {"english", "german"}) {
      EXPECT_EQ(report({"--format", format, "--language", language, file}).exitCode, 0);
    }
  }
}
