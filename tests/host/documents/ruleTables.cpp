// Tables of rules and promises: docs/executive.md, each sentence of which is one that the executive
// has, and docs/reliability.md, each promise of which is said in a header. Each test that they name
// is there.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "documents/tDocument.h"
#include "patterns.h"

namespace {

using tCells = std::vector<std::string>;

// A kind of table: the first cell of its head, and how many columns it has.
struct tTable {
  char const* page;
  std::string head;
  size_t columns;
};

tTable const kRules = {"docs/executive.md", "rule", 4};
tTable const kPromises = {"docs/reliability.md", "promise", 3};

std::filesystem::path const kProject(OXDIAG_SOURCE_DIR);

std::string readFile(std::filesystem::path const& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// All sources below a folder, one behind the other.
std::string sourcesBelow(char const* folder) {
  std::string text;
  for (auto const& entry : std::filesystem::recursive_directory_iterator(kProject / folder)) {
    if (entry.path().extension() == ".cpp") text += readFile(entry.path());
  }
  return text;
}

// String literals that stand behind each other are one.
std::string joined(std::string const& code) {
  return replaceAll(code, "\"\\s*\n\\s*\"", "");
}

// The first one is what stands in front of the row: nothing.
tCells cellsOf(std::string const& row) {
  tCells cells;
  std::istringstream stream(row);
  for (std::string cell; std::getline(stream, cell, '|');) cells.push_back(cell);
  return cells;
}

// What stands between backquotes.
std::vector<std::string> quotedIn(std::string const& text) {
  return findAll(text, "`([^`]*)`");
}

// Calls visit(cells) for each row below the head of such a table, and returns how many there are.
template <class Visit>
int visitRows(tTable const& table, Visit visit) {
  std::istringstream lines(tDocument(table.page).getText());
  int rows = 0;
  for (std::string line; std::getline(lines, line);) {
    tCells const cells = cellsOf(line);
    bool const isRow = cells.size() == table.columns + 1 && line.rfind("| " + table.head, 0) != 0 &&
                       line[1] == ' ';
    if (isRow) visit(cells);
    rows += isRow;
  }
  return rows;
}

// `name` is Suite.Test, `tests` all sources of tests.
bool isTest(std::string const& name, std::string const& tests) {
  size_t const dot = name.find('.');
  if (dot == std::string::npos) return false;
  return tests.find("(" + name.substr(0, dot) + ", " + name.substr(dot + 1) + ")") !=
         std::string::npos;
}

void expectTestsOf(tTable const& table) {
  std::string const tests = sourcesBelow("tests/host") + sourcesBelow("tests/conformance");
  visitRows(table, [&](tCells const& cells) {
    for (std::string const& name : quotedIn(cells.back())) EXPECT_TRUE(isTest(name, tests)) << name;
  });
}

bool isWatched(std::string const& verdict) {
  return verdict.rfind(" has,", 0) == 0 || verdict.rfind(" has:", 0) == 0 || verdict == " has ";
}

// A header as clients include it, or a file from the top.
bool isFile(std::string const& name) {
  for (char const* folder : {"", "include", "platform/vexk/include", "platform/qelmk/include",
                             "platform/vexk/host/include"}) {
    if (std::filesystem::is_regular_file(kProject / folder / name)) return true;
  }
  return false;
}

}  // namespace

TEST(ExecutiveRules, EachSentenceIsOneOfTheExecutives) {
  std::string const code = joined(sourcesBelow("platform/ntos/host"));
  visitRows(kRules, [&code](tCells const& cells) {
    for (std::string const& sentence : quotedIn(cells[3])) {
      EXPECT_NE(code.find(sentence), std::string::npos) << sentence;
    }
  });
}

TEST(ExecutiveRules, EachTestIsThere) {
  expectTestsOf(kRules);
}

TEST(ExecutiveRules, WhatIsWatchedHasATest) {
  int watched = 0;
  int const rules = visitRows(kRules, [&watched](tCells const& cells) {
    if (!isWatched(cells[2])) return;
    ++watched;
    EXPECT_FALSE(quotedIn(cells[4]).empty()) << cells[1];
  });
  EXPECT_GT(watched, 40);
  EXPECT_GT(rules, watched);
}

TEST(ReliabilityPromises, EachTestIsThere) {
  expectTestsOf(kPromises);
}

TEST(ReliabilityPromises, EachIsSaidInAFileThatIsThere) {
  visitRows(kPromises, [](tCells const& cells) {
    std::vector<std::string> const names = quotedIn(cells[2]);
    EXPECT_FALSE(names.empty()) << cells[1];
    for (std::string const& name : names) EXPECT_TRUE(isFile(name)) << name;
  });
}

TEST(ReliabilityPromises, EachIsShownByATest) {
  int const promises = visitRows(
      kPromises, [](tCells const& cells) { EXPECT_FALSE(quotedIn(cells[3]).empty()) << cells[1]; });
  EXPECT_GT(promises, 50);
}
