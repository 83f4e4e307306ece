// The runs of the demo that README.md shows.

#include <utility>
#include <vector>

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
constexpr std::string_view kPictured = "./dev demo";
constexpr std::string_view kCut = "\u2026";

std::string withoutMarkup(std::string const& xml) {
  std::string text = replaceAll(xml, "<[^>]*>", "");
  for (auto const& [entity, character] :
       {std::pair("&lt;", "<"), std::pair("&gt;", ">"), std::pair("&amp;", "&")}) {
    text = replaceAll(text, entity, character);
  }
  return text;
}

// The texts of these elements of a picture, without their markup.
std::vector<std::string> textsOf(std::string const& picture, std::string const& element) {
  std::vector<std::string> texts = findAll(picture, "<" + element + "([ >].*)</" + element + ">");
  for (std::string& text : texts) text = withoutMarkup("<" + text);
  return texts;
}

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

// In the order of the picture, whatever is left out between them.
TEST_F(ReadmeSamples, ThePictureShowsWhatTheDemoTraces) {
  std::string const picture = tDocument("docs/trace.svg").getText();
  std::vector<std::string> const commands = textsOf(picture, "desc");
  ASSERT_EQ(commands.size(), 1U);
  ASSERT_TRUE(commands[0].starts_with(kPictured)) << commands[0];
  std::string seen = withoutLineNumbers(runDemo(commands[0].substr(kPictured.size())));
  seen = replaceAll(seen, "\t", "    ");
  size_t place = 0;
  size_t lines = 0;
  for (std::string line : textsOf(picture, "text")) {
    if (line == "...") continue;
    bool const isCut = line.ends_with(kCut);
    line = withoutLineNumbers(line.substr(0, line.size() - (isCut ? kCut.size() : 0)));
    place = seen.find(line + (isCut ? "" : "\n"), place);
    ASSERT_NE(place, std::string::npos) << line;
    ++lines;
  }
  EXPECT_GT(lines, 15U);
}

TEST_F(ReadmeSamples, EveryFileThatIsNamedIsThere) {
  std::string const text = tDocument("README.md").getText();
  for (char const* name :
       {"examples/slotbus/README.md", "docs/tracing.md", "docs/options.md", "docs/destinations.md",
        "docs/configuring.md", "docs/windows.md", "docs/status.md", "docs/testing.md",
        "docs/quickstart.md", "docs/trace.svg", "cmake/version.cmake"}) {
    EXPECT_TRUE(contains(text, name)) << name;
    EXPECT_TRUE(std::filesystem::exists(std::string(OXDIAG_SOURCE_DIR "/") + name)) << name;
  }
}
