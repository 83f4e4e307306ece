// The options as the documents describe them: every sample is configured into a fresh library, and
// what the document says of it must hold.
//
//   ```trace, ```assert    option words, given to the trace stream or the assertions
//   ```inquire             what the object last given words then tells as its settings
//   ```prints              what came out at the debugger since the sample began
//   table rows             option | at first | effect | example | what is told then
//
// Samples without another kind of block between them follow each other in one library.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <sstream>

#include "documents/tDocument.h"
#include "ntoshost/executive.h"
#include "ntoshost/files.h"
#include "options/optionTable.h"
#include "options/tOptionCheck.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "qelmk/module.h"
#include "slotbus/host/tOptionWordList.h"
#include "trace/capturedPrint.h"
#include "vexk/module.h"
#include "vexkhost/serialPort.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;

namespace {

// A page, and how many samples and claims it has at least.
struct tSampledPage {
  char const* name;
  int samples;
  int claims;
};

constexpr tSampledPage kPages[] = {
    {"docs/options.md", 4, 5}, {"docs/destinations.md", 4, 5}, {"docs/no-trace.md", 2, 2}};

// What a library tells after some samples.
struct tTold {
  std::string trace;
  std::string assertions;
  std::string print;

  std::string const& get(std::string const& kind) const {
    return kind == "assert" ? assertions : trace;
  }
};

std::string inquire(tConfigurable& object) {
  unsigned int size = 0;
  object.inquire(nullptr, 0, &size);
  std::string text(size, '\0');
  object.inquire(text.data(), size, nullptr);
  text.resize(size - 1);
  return text;
}

// In a process of its own: loads the library, configures, and writes what is told to `output`, each
// text with its terminator.
[[noreturn]] void runSamples(std::vector<tDocument::tBlock> const& samples, int output) {
  tCapturedPrint print;
  vexkInitialize();
  qelmkInitialize();
  oxdiagkInitialize(nullptr);
  for (tDocument::tBlock const& sample : samples) {
    if (sample.kind == "assert") {
      tAssertConfiguration::getInstance().configure(sample.text.c_str());
    } else {
      tTrace::getInstance().configure(sample.text.c_str());
    }
  }
  for (std::string const& text : {inquire(tTrace::getInstance()),
                                  inquire(tAssertConfiguration::getInstance()), print.text()}) {
    bool const isWritten = write(output, text.c_str(), text.size() + 1) > 0;
    if (!isWritten) _exit(1);
  }
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("a sample of the documents");
  ntoshost::requireNoHandles("a sample of the documents");
  _exit(0);
}

// Every library has a process of its own. It runs on a machine with a drive C: and a serial port.
tTold tellAfter(std::vector<tDocument::tBlock> const& samples) {
  std::string folder = (std::filesystem::temp_directory_path() / "documents-XXXXXX").string();
  EXPECT_NE(mkdtemp(folder.data()), nullptr);
  EXPECT_TRUE(ntoshost::mountDrive('C', folder.c_str()));
  EXPECT_TRUE(vexkhost::connectSerialFile((folder + "/port").c_str()));
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  pid_t const child = fork();
  if (child == 0) runSamples(samples, ends[1]);
  close(ends[1]);
  std::string all;
  char buffer[4096];
  for (ssize_t count = 1; count > 0;) {
    count = read(ends[0], buffer, sizeof(buffer));
    if (count > 0) all.append(buffer, static_cast<size_t>(count));
  }
  close(ends[0]);
  int state = -1;
  EXPECT_EQ(waitpid(child, &state, 0), child);
  EXPECT_EQ(state, 0);
  std::filesystem::remove_all(folder);
  std::istringstream texts(all);
  tTold told;
  for (std::string* text : {&told.trace, &told.assertions, &told.print}) {
    std::getline(texts, *text, '\0');
  }
  return told;
}

bool isSample(tDocument::tBlock const& block) {
  return block.kind == "trace" || block.kind == "assert";
}

// Looks at one page's blocks in their order.
class tPageRunner {
 public:
  void run(tDocument const& page) {
    for (tDocument::tBlock const& block : page.getBlocks()) {
      if (isSample(block)) {
        add(block);
      } else {
        isFollowing = false;
        check(block);
      }
    }
  }

  int samples = 0;
  int claims = 0;

 private:
  void add(tDocument::tBlock const& block) {
    if (!isFollowing) pending.clear();
    isFollowing = true;
    pending.push_back(block);
    ++samples;
  }

  void check(tDocument::tBlock const& block) {
    if (block.kind != "inquire" && block.kind != "prints") return;
    ASSERT_FALSE(pending.empty()) << "line " << block.line;
    tTold const told = tellAfter(pending);
    std::string const& seen = block.kind == "prints" ? told.print : told.get(pending.back().kind);
    EXPECT_TRUE(matches(seen, block.text)) << "line " << block.line << ": " << block.text << seen;
    ++claims;
  }

  std::vector<tDocument::tBlock> pending;
  bool isFollowing = false;
};

bool isOptionRow(tDocument::tRow const& row) {
  return row.cells.size() == 5 && row.cells[0].starts_with("--") &&
         !row.cells[0].starts_with("---");
}

std::string kindOf(tDocument::tRow const& row) {
  return row.heading.find("ssertion") == std::string::npos ? "trace" : "assert";
}

void forEachOptionRow(std::function<void(tDocument::tRow const&)> const& look) {
  tDocument const page(kPages[0].name);
  for (tDocument::tRow const& row : page.getRows()) {
    if (isOptionRow(row)) look(row);
  }
}

size_t countWords(tOptionLanguage const& language, std::string const& kind) {
  size_t found = 0;
  forEachOptionRow([&](tDocument::tRow const& row) {
    std::string const word = row.cells[0].substr(0, row.cells[0].find(' '));
    if (kindOf(row) == kind && findOption(language, word) != nullptr) ++found;
  });
  return found;
}

}  // namespace

TEST(DocumentPatterns, APatternIsTheTextWithGaps) {
  EXPECT_TRUE(matches("--on --x on", "--on --x on"));
  EXPECT_TRUE(matches(" --on\n --x  on ", "--on --x on"));
  EXPECT_TRUE(matches("--on --x on", "... --x on"));
  EXPECT_TRUE(matches("--on --x on", "--on ..."));
  EXPECT_TRUE(matches("a b c b", "a ... b"));
  EXPECT_TRUE(matches("a b c", "... b ..."));
  EXPECT_FALSE(matches("--on --x on", "--on"));
  EXPECT_FALSE(matches("--on --x on", "--x ..."));
  EXPECT_FALSE(matches("--on --x on", "... --x"));
  EXPECT_FALSE(matches("a b c", "... c ... b ..."));
  EXPECT_FALSE(matches("a", "a ... a"));
  EXPECT_FALSE(matches("", "a"));
}

TEST(DocumentSamples, EveryBlockOfEveryPageHolds) {
  for (tSampledPage const& page : kPages) {
    tPageRunner runner;
    runner.run(tDocument(page.name));
    EXPECT_GE(runner.samples, page.samples) << page.name;
    EXPECT_GE(runner.claims, page.claims) << page.name;
  }
}

TEST(DocumentSamples, EveryRowTellsHowTheOptionIsAtFirst) {
  tTold const told = tellAfter({});
  forEachOptionRow([&](tDocument::tRow const& row) {
    std::string const& seen = told.get(kindOf(row));
    EXPECT_TRUE(matches(seen, "..." + row.cells[1] + "...")) << "line " << row.line << seen;
  });
}

TEST(DocumentSamples, EveryExampleOfARowIsToldAsTheRowSays) {
  forEachOptionRow([](tDocument::tRow const& row) {
    std::string const kind = kindOf(row);
    std::string const seen = tellAfter({{kind, row.cells[3], row.line}}).get(kind);
    EXPECT_TRUE(matches(seen, "..." + row.cells[4] + "...")) << "line " << row.line << seen;
  });
}

TEST(DocumentSamples, EveryOptionOfTheDemosTablesHasItsRow) {
  EXPECT_EQ(countWords(kTraceLanguage, "trace"), kTraceLanguage.options.size());
  EXPECT_EQ(countWords(kAssertLanguage, "assert"), kAssertLanguage.options.size());
}

TEST(DocumentSamples, EveryWordThatTheLibraryTellsIsInTheDemosTables) {
  tTold const told = tellAfter({});
  vexkInitialize();
  tOptionWordList const trace(told.trace);
  tOptionWordList const assertions(told.assertions);
  EXPECT_EQ(tOptionCheck(kTraceLanguage, trace.get()).findProblem(), std::nullopt);
  EXPECT_EQ(tOptionCheck(kAssertLanguage, assertions.get()).findProblem(), std::nullopt);
  EXPECT_EQ(trace.get().size(), 35U);
  EXPECT_EQ(assertions.get().size(), 4U * 18U);
  vexkUnload();
}
