// What the shell offers behind words of oxdiagctl.

#include "slotbus/demoTest.h"

namespace {

class Completion : public tDemoTest {
 protected:
  // What may stand for the last of these words, in order.
  std::string offered(std::string const& words) const {
    std::string const script =
        "PATH=" OXDIAG_BINARY_DIR "/tools/oxdiagctl:$PATH; source " OXDIAG_SOURCE_DIR
        "/tools/oxdiagctl/oxdiagctl.bash; COMP_WORDS=(oxdiagctl " +
        words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _oxdiagctl; echo ${COMPREPLY[@]}";
    return runProgram({"bash", "-c", script}).output;
  }
};

}  // namespace

TEST_F(Completion, OffersCommands) {
  EXPECT_EQ(offered("''"), "list trace assert --at --help\n");
  EXPECT_EQ(offered("t"), "trace\n");
  EXPECT_EQ(offered("--at /tmp/x a"), "assert\n");
  EXPECT_EQ(offered("list ''"), "--at --help\n");
}

TEST_F(Completion, OffersTheWordsOfTheLibrary) {
  EXPECT_EQ(offered("trace --time"), "--timestamp --timedelta\n");
  EXPECT_EQ(offered("trace --off --p"), "--push --pop --prefixwidth\n");
  EXPECT_EQ(offered("assert --t"), "--terminate\n");
  EXPECT_EQ(offered("assert --timestamp"), "\n");
}

TEST_F(Completion, OffersValues) {
  EXPECT_EQ(offered("trace --timestamp o"), "on off\n");
  EXPECT_EQ(offered("trace --destination ''"), "vex serial file\n");
  EXPECT_EQ(offered("assert --category s"), "statusWarning statusFatal\n");
  EXPECT_EQ(offered("trace --at " OXDIAG_SOURCE_DIR "/READ"), OXDIAG_SOURCE_DIR "/README.md\n");
}
