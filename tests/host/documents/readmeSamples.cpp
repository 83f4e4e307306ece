// The runs of the demo that README.md shows.

#include "documents/tDocument.h"
#include "patterns.h"
#include "slotbus/demoTest.h"

namespace {

class ReadmeSamples : public tDemoTest {
 protected:
  // What `./dev demo ARGUMENTS` shows behind its build.
  std::string runDemo(std::string const& arguments) const {
    return runProgram({"sh", "-c", "cd " OXDIAG_SOURCE_DIR "; " + std::string(kDemo) + arguments})
        .output;
  }
};

// Of a macro call over several lines one compiler takes the first line, the other the last; the
// number is followed by padding.
std::string withoutLineNumbers(std::string const& text) {
  return replaceAll(text, "\\[slotbus--[0-9]+--([A-Za-z]+\\.cpp)-+\\]", "[$1]");
}

constexpr std::string_view kCommand = "$ ./dev demo";

}  // namespace

TEST_F(ReadmeSamples, EveryRunOfTheDemoShowsWhatThePageSays) {
  int runs = 0;
  tDocument const page("README.md");
  for (tDocument::tBlock const& block : page.getBlocks()) {
    if (block.kind != "console") continue;
    size_t const end = block.text.find('\n');
    ASSERT_TRUE(block.text.starts_with(kCommand)) << block.text;
    std::string const seen = runDemo(block.text.substr(kCommand.size(), end - kCommand.size()));
    EXPECT_TRUE(matches(withoutLineNumbers(seen), withoutLineNumbers(block.text.substr(end + 1))))
        << "line " << block.line << "\n"
        << seen;
    ++runs;
  }
  EXPECT_EQ(runs, 1);
}

TEST_F(ReadmeSamples, EveryFileThatIsNamedIsThere) {
  std::string const text = tDocument("README.md").getText();
  for (char const* name : {"examples/slotbus/README.md", "docs/tracing.md", "docs/options.md",
                           "docs/destinations.md", "docs/configuring.md", "docs/windows.md",
                           "docs/status.md", "docs/testing.md", "cmake/version.cmake"}) {
    EXPECT_TRUE(contains(text, name)) << name;
    EXPECT_TRUE(std::filesystem::exists(std::string(OXDIAG_SOURCE_DIR "/") + name)) << name;
  }
}
