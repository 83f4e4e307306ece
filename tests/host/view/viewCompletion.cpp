// What the shell offers behind words of oxdiag-view.

#include "shellCompletion.h"
#include "slotbus/demoTest.h"

namespace {

class ViewCompletion : public tDemoTest {
 protected:
  // What may stand for the last of these words, sorted, in a folder with a trace.
  std::string offered(std::string const& words) const {
    write("rack.out", "");
    std::string const script = "cd '" + pathOf("") + "' && " +
                               completionOf("oxdiagview", "oxdiag-view", words) + kPrintSorted;
    return runProgram({"bash", "-c", script}).output;
  }
};

}  // namespace

TEST_F(ViewCompletion, OffersOptions) {
  EXPECT_EQ(offered("--"),
            "--color --dump --filter --follow --help --html --jsonl --perfetto --rate --start "
            "--summary --version\n");
  EXPECT_EQ(offered("--follow --f"), "--filter\n");
  EXPECT_EQ(offered("--help ''"), "\n");
}

TEST_F(ViewCompletion, OffersValuesOfAnOption) {
  EXPECT_EQ(offered("--color a"), "always auto\n");
  EXPECT_EQ(offered("--filter ''"), "\n");
  EXPECT_EQ(offered("--perfetto r"), "rack.out\n");
  EXPECT_EQ(offered("--html r"), "rack.out\n");
}

TEST_F(ViewCompletion, OffersOneFile) {
  EXPECT_EQ(offered("--rate 1000 r"), "rack.out\n");
  EXPECT_EQ(offered("rack.out r"), "\n");
}
