// The tables of docs/executive.md: each sentence is one that the executive has, each test is there.

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

std::string readFile(std::filesystem::path const& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// All sources below a folder, one behind the other.
std::string sourcesBelow(char const* folder) {
  std::string text;
  for (auto const& entry : std::filesystem::recursive_directory_iterator(
           std::filesystem::path(OXDIAG_SOURCE_DIR) / folder)) {
    if (entry.path().extension() == ".cpp") text += readFile(entry.path());
  }
  return text;
}

// String literals that stand behind each other are one.
std::string joined(std::string const& code) {
  return replaceAll(code, "\"\\s*\n\\s*\"", "");
}

std::vector<std::string> cellsOf(std::string const& row) {
  std::vector<std::string> cells;
  std::istringstream stream(row);
  for (std::string cell; std::getline(stream, cell, '|');) cells.push_back(cell);
  return cells;
}

// What stands between backquotes.
std::vector<std::string> quotedIn(std::string const& text) {
  return findAll(text, "`([^`]*)`");
}

// Calls visit(cells) for each row of the tables of rules: rule, verdict, sentences, tests.
template <class Visit>
int visitRules(Visit visit) {
  std::istringstream lines(tDocument("docs/executive.md").getText());
  int rules = 0;
  for (std::string line; std::getline(lines, line);) {
    std::vector<std::string> const cells = cellsOf(line);
    bool const isRule = cells.size() == 5 && line.rfind("| rule", 0) != 0 && line[1] == ' ';
    if (isRule) visit(cells);
    rules += isRule;
  }
  return rules;
}

bool isWatched(std::string const& verdict) {
  return verdict.rfind(" has,", 0) == 0 || verdict.rfind(" has:", 0) == 0 || verdict == " has ";
}

}  // namespace

TEST(ExecutiveRules, EachSentenceIsOneOfTheExecutives) {
  std::string const code = joined(sourcesBelow("platform/ntos/host"));
  visitRules([&code](std::vector<std::string> const& cells) {
    for (std::string const& sentence : quotedIn(cells[3])) {
      EXPECT_NE(code.find(sentence), std::string::npos) << sentence;
    }
  });
}

TEST(ExecutiveRules, EachTestIsThere) {
  std::string const tests = sourcesBelow("tests/host");
  visitRules([&tests](std::vector<std::string> const& cells) {
    for (std::string const& name : quotedIn(cells[4])) {
      size_t const dot = name.find('.');
      ASSERT_NE(dot, std::string::npos) << name;
      std::string const written = name.substr(0, dot) + ", " + name.substr(dot + 1) + ")";
      EXPECT_NE(tests.find("(" + written), std::string::npos) << name;
    }
  });
}

TEST(ExecutiveRules, WhatIsWatchedHasATest) {
  int watched = 0;
  int const rules = visitRules([&watched](std::vector<std::string> const& cells) {
    if (!isWatched(cells[2])) return;
    ++watched;
    EXPECT_FALSE(quotedIn(cells[4]).empty()) << cells[1];
  });
  EXPECT_GT(watched, 40);
  EXPECT_GT(rules, watched);
}
