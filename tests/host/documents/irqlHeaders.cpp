// docs/irql.md and the public headers: each level that a header promises has a row that names the
// header, and each header that a row names promises the row's level.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "documents/tDocument.h"
#include "patterns.h"

namespace {

using tLevels = std::set<std::string>;

std::filesystem::path const kTop(OXDIAG_SOURCE_DIR);
constexpr char const* kFolders[] = {"include", "platform/vexk/include", "platform/qelmk/include",
                                    "platform/stl/include"};

// The comments of a header as one line.
std::string commentsOf(std::filesystem::path const& header) {
  std::ifstream file(header);
  std::string comments;
  for (std::string line; std::getline(file, line);) {
    size_t const mark = line.find("// ");
    if (mark != std::string::npos) comments += line.substr(mark + 2);
  }
  return comments;
}

bool has(std::string const& text, char const* part) {
  return text.find(part) != std::string::npos;
}

// The levels that it says an operation may be called at, as highest ones.
tLevels promisesIn(std::string const& comments) {
  tLevels levels;
  for (char const* const level : {"APC_LEVEL", "DISPATCH_LEVEL"}) {
    if (has(comments, (std::string("<= ") + level).c_str())) levels.insert(level);
  }
  size_t const passive = comments.find("PASSIVE_LEVEL");
  if (passive != std::string::npos) {
    bool const isApc = has(comments.substr(passive), "PASSIVE_LEVEL or APC_LEVEL");
    levels.insert(isApc ? "APC_LEVEL" : "PASSIVE_LEVEL");
  }
  for (char const* const any : {"any IRQL", "Any IRQL", "IRQL: any", "put at any"}) {
    if (has(comments, any)) levels.insert("any");
  }
  return levels;
}

// By header, as clients include it; those without a promise are left out.
std::map<std::string, tLevels> promisesOfHeaders() {
  std::map<std::string, tLevels> promises;
  for (char const* const folder : kFolders) {
    for (auto const& entry : std::filesystem::recursive_directory_iterator(kTop / folder)) {
      if (entry.path().extension() != ".h") continue;
      tLevels const levels = promisesIn(commentsOf(entry.path()));
      std::string const name = std::filesystem::relative(entry.path(), kTop / folder).string();
      if (!levels.empty()) promises[name] = levels;
    }
  }
  return promises;
}

struct tRow {
  std::string operation;
  std::string level;
  std::string remark;
  std::vector<std::string> headers;
};

std::vector<tRow> rowsOfPage() {
  std::vector<tRow> rows;
  tDocument const page("docs/irql.md");
  for (tDocument::tRow const& row : page.getRows()) {
    bool const isHead =
        row.cells.size() != 4 || row.cells[1] == "highest level" || row.cells[1].starts_with("-");
    if (isHead) continue;
    rows.push_back(
        {row.cells[0], row.cells[1], row.cells[2], findAll(row.cells[3], "([a-z]+/\\w+\\.h)")});
  }
  return rows;
}

// The level of its cell, and those of its remark.
bool tells(tRow const& row, std::string const& level) {
  std::string const pattern = "(\\b" + level + "\\b)";
  return !findAll(row.level + " " + row.remark, pattern).empty();
}

bool isPlain(std::string const& level) {
  return level == "any" || !findAll(level, "^([A-Z]+_LEVEL)$").empty();
}

}  // namespace

TEST(IrqlOfHeaders, EachPromiseHasARow) {
  std::vector<tRow> const rows = rowsOfPage();
  for (auto const& [header, levels] : promisesOfHeaders()) {
    for (std::string const& level : levels) {
      bool isTold = false;
      for (tRow const& row : rows) {
        for (std::string const& name : row.headers) isTold |= name == header && tells(row, level);
      }
      EXPECT_TRUE(isTold) << "docs/irql.md has no row with " << level << " that names " << header;
    }
  }
}

TEST(IrqlOfHeaders, EachRowIsPromisedByItsHeaders) {
  std::map<std::string, tLevels> const promises = promisesOfHeaders();
  for (tRow const& row : rowsOfPage()) {
    EXPECT_FALSE(row.headers.empty()) << row.operation;
    for (std::string const& header : row.headers) {
      ASSERT_TRUE(promises.contains(header)) << header << " promises no level";
      bool const isPromised = !isPlain(row.level) || promises.at(header).contains(row.level);
      EXPECT_TRUE(isPromised) << header << " does not promise " << row.level;
    }
  }
}

TEST(IrqlOfHeaders, PromisesAreFoundAsHeadersSayThem) {
  EXPECT_EQ(promisesIn("Not locked. IRQL <= APC_LEVEL."), tLevels({"APC_LEVEL"}));
  EXPECT_EQ(promisesIn("memory: <= DISPATCH_LEVEL. Evaluating: any IRQL."),
            tLevels({"DISPATCH_LEVEL", "any"}));
  EXPECT_EQ(promisesIn("PASSIVE_LEVEL; put at any, where text can be read."),
            tLevels({"PASSIVE_LEVEL", "any"}));
  EXPECT_EQ(promisesIn("made at PASSIVE_LEVEL or APC_LEVEL, and"), tLevels({"APC_LEVEL"}));
  EXPECT_EQ(promisesIn("Below DISPATCH_LEVEL it runs in a critical region"), tLevels());
  EXPECT_GE(promisesOfHeaders().size(), 80u);
}
