// The commands of docs/configuring.md, typed one after the other against one program.

#include <sstream>

#include "control/controlTest.h"
#include "documents/tDocument.h"
#include "package/childProcess.h"

#include "configuring.samples"

namespace {

class ConfiguringSamples : public tControlTest {
 protected:
  // What a person sees who types the command, results and complaints in one.
  std::string type(std::string const& command) const {
    std::string const script = "cd " + pathOf("") +
                               "; oxdiagctl() { case $1 in --at) ;; *) set -- --at " +
                               program.getPath() + " \"$@\" ;; esac; " + kControl +
                               " \"$@\"; }\n{ " + command + "\n} 2>&1";
    return runProgram({"bash", "-c", script}).output;
  }

  // Commands behind "$ ", each with what comes of it up to the next.
  void typeBlock(tDocument::tBlock const& block) {
    std::istringstream lines(block.text);
    std::string command;
    std::string expected;
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("$ ")) {
        expected += line + "\n";
        continue;
      }
      check(block, command, expected);
      command = line.substr(2);
      expected.clear();
    }
    check(block, command, expected);
  }

  void check(tDocument::tBlock const& block, std::string const& command,
             std::string const& expected) {
    if (command.empty()) return;
    std::string const seen = type(command);
    EXPECT_TRUE(matches(seen, expected)) << "line " << block.line << ": " << command << "\n"
                                         << seen;
    ++commands;
  }

  int commands = 0;
};

}  // namespace

TEST_F(ConfiguringSamples, AProgramServesUntilItsUserIsDone) {
  setenv("XDG_RUNTIME_DIR", pathOf("").c_str(), 1);
  int const exitCode = inAProcess([this] {
    if (std::freopen(write("keys", "\n").c_str(), "r", stdin) == nullptr) return 1;
    serveUntilReturn();
    return std::getchar() == EOF ? 0 : 2;
  });
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(exitCode, 0);
}

TEST_F(ConfiguringSamples, EveryCommandShowsWhatThePageSays) {
  tDocument const page("docs/configuring.md");
  for (tDocument::tBlock const& block : page.getBlocks()) {
    if (block.kind == "console") typeBlock(block);
    program.trace();
  }
  EXPECT_EQ(commands, 15);
  EXPECT_NE(program.readFile("x.out").find("line 4"), std::string::npos);
}
