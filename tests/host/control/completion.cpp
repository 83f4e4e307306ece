// What the shell offers behind words of oxdiagctl.

#include <sstream>

#include "control/controlTest.h"
#include "rounds.h"
#include "shellCompletion.h"

namespace {

class Completion : public tControlTest {
 protected:
  // Alone, or with a value of its own behind it.
  void expectAccepted(std::string const& words, std::string const& candidate) const {
    if (candidate == "--at") return;
    std::istringstream split(words + " " + candidate);
    std::vector<std::string> arguments;
    for (std::string word; split >> word;) arguments.push_back(word);
    if (candidate == "--prefixwidth") arguments.emplace_back("7");
    if (candidate == "--mutex-kernel-token") arguments.emplace_back("7:0");
    if (candidate == "--category") arguments.emplace_back("warning");
    if (words == "trace --pop" || candidate == "--pop") {
      control({"trace", "--push"});
      control({"assert", "--push"});
    }
    tRun const run = control(arguments);
    EXPECT_EQ(run.exitCode, 0) << words << " " << candidate << "\n" << run.errors;
  }

  // What may stand for the last of these words, in order.
  std::string offered(std::string const& words) const {
    std::string const script = "PATH=" OXDIAG_BINARY_DIR "/tools/oxdiagctl:$PATH; " +
                               completionOf("oxdiagctl", "oxdiagctl", words) +
                               "echo ${COMPREPLY[@]}";
    return runProgram({"bash", "-c", script}).output;
  }
};

}  // namespace

TEST_F(Completion, OffersCommands) {
  EXPECT_EQ(offered("''"), "list trace assert version --at --help --version\n");
  EXPECT_EQ(offered("t"), "trace\n");
  EXPECT_EQ(offered("--at /tmp/x a"), "assert\n");
  EXPECT_EQ(offered("list ''"), "--at --help\n");
}

TEST_F(Completion, OffersTheWordsOfTheLibrary) {
  EXPECT_EQ(offered("trace --time"), "--timestamp --timedelta\n");
  EXPECT_EQ(offered("trace --off --p"), "--push --prefixwidth\n");
  EXPECT_EQ(offered("assert --t"), "--terminate\n");
  EXPECT_EQ(offered("assert --timestamp"), "\n");
}

TEST_F(Completion, OffersOnlyWhatIsAccepted) {
  int offers = 0;
  for (char const* words :
       {"trace", "assert --checks", "trace --on", "trace --timestamp off", "trace --prefixwidth",
        "trace --filter", "trace --mutex-kernel-token 5:0", "trace --destination",
        "trace --destination serial", "trace --destination file append", "assert --category",
        "assert --category warning", "trace --push", "trace --pop", "list", "version",
        "list --help"}) {
    std::istringstream candidates(offered(std::string(words) + " ''"));
    for (std::string candidate; candidates >> candidate; ++offers) {
      if (static_cast<unsigned>(offers) % kPlaceStep == 0) expectAccepted(words, candidate);
    }
  }
  EXPECT_GT(offers, 100);
}

TEST_F(Completion, OffersValues) {
  EXPECT_EQ(offered("trace --timestamp o"), "on off\n");
  EXPECT_EQ(offered("trace --destination ''"), "vex serial file\n");
  EXPECT_EQ(offered("trace --destination file a"), "append\n");
  EXPECT_EQ(offered("trace --destination serial 1"), "115200 19200 1800 1200\n");
  EXPECT_EQ(offered("trace --prefixwidth ''"), "\n");
  EXPECT_EQ(offered("trace --pop ''"), "--raw --at --help\n");
  EXPECT_EQ(offered("assert --category s"), "statusWarning statusFatal\n");
  EXPECT_EQ(offered("trace --at " OXDIAG_SOURCE_DIR "/READ"), OXDIAG_SOURCE_DIR "/README.md\n");
}
