// What the shell offers behind words of oxdiagctl.

#include <sstream>

#include "control/controlTest.h"

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
      control({"trace", "assert --checks", "trace --on", "trace --timestamp off",
               "trace --prefixwidth", "trace --filter", "trace --mutex-kernel-token 5:0",
               "trace --destination", "trace --destination serial",
               "trace --destination file append", "assert --category", "assert --category warning",
               "trace --push", "trace --pop", "list", "version", "list --help"}) {
        std::istringstream candidates(offered(std::string(words) + " ''"));
        for (std::string candidate; candidates >> candidate; ++offers) {
          expectAccepted(words, candidate);
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
