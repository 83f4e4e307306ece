// What a status macro costs when there is nothing to set, as the compilers translate it.

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr char kSource[] = R"(
#define OXDIAG_COMPONENT "cost"
#include "oxdiagk/statusMacros.h"
extern "C" void setStatus(nOXDIAG100::tStatus2& status, i32 code) {
  OXDIAG_SET_STATUS(status, code);
}
extern "C" void setWithoutStackTrace(nOXDIAG100::tStatus2& status, i32 code) {
  OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, code);
}
extern "C" void setWithDescription(nOXDIAG100::tStatus2& status, i32 code,
                                   nOXDIAG100::iStatus2Description const& description) {
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, code, description);
}
)";

std::string includes(std::string const& target) {
  std::string const top = std::string("-I") + OXDIAG_SOURCE_DIR;
  std::string words = top + "/include";
  for (char const* layer : {"compiler", "stl", "vexk", "qelmk"}) {
    words += " " + top + "/platform/" + layer + "/include";
    words += " " + top + "/platform/" + layer + "/" + target + "/include";
  }
  return words;
}

std::string translate(std::string const& compiler) {
  std::string const command =
      "printf '%s' \"$OXDIAG_COST_SOURCE\" | " + compiler +
      " -std=c++20 -O2 -fno-exceptions -fno-rtti -fno-asynchronous-unwind-tables -S -o - -x c++ -";
  setenv("OXDIAG_COST_SOURCE", kSource, 1);
  std::string text;
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return text;
  char buffer[4096];
  while (size_t const size = fread(buffer, 1, sizeof buffer, pipe)) text.append(buffer, size);
  return pclose(pipe) == 0 ? text : std::string();
}

// The instructions of a function up to the first return, when no jump is taken.
std::vector<std::string> straightPath(std::string const& assembly, std::string const& function) {
  std::vector<std::string> path;
  std::istringstream lines(assembly);
  std::string line;
  bool isInside = false;
  while (std::getline(lines, line)) {
    if (line.rfind(function + ":", 0) == 0) isInside = true;
    // Labels, directives and comments are no instructions.
    if (!isInside || line.size() < 2 || line[0] != '\t' || !std::islower(line[1])) continue;
    path.push_back(line.substr(1, line.find_first_of("\t ", 1) - 1));
    if (path.back().rfind("ret", 0) == 0) return path;
  }
  return {};
}

unsigned countBeginning(std::vector<std::string> const& path, char const* beginning) {
  unsigned count = 0;
  for (std::string const& word : path) count += word.rfind(beginning, 0) == 0 ? 1 : 0;
  return count;
}

void expectOneComparison(std::string const& compiler) {
  std::string const assembly = translate(compiler);
  for (char const* function : {"setStatus", "setWithoutStackTrace", "setWithDescription"}) {
    std::vector<std::string> const path = straightPath(assembly, function);
    ASSERT_FALSE(path.empty()) << compiler << " gave no " << function;
    EXPECT_EQ(countBeginning(path, "test") + countBeginning(path, "cmp"), 1u)
        << compiler << " " << function;
    EXPECT_EQ(countBeginning(path, "j"), 1u) << compiler << " " << function;
    EXPECT_EQ(countBeginning(path, "call"), 0u) << compiler << " " << function;
    EXPECT_LE(path.size(), 5u) << compiler << " " << function;
  }
  // That the path is the one without calls would mean nothing if there were none at all.
  EXPECT_NE(assembly.find("_allocateImplementationObject"), std::string::npos);
}

}  // namespace

TEST(StatusMacroCost, IsOneComparisonAndNoCallFromGcc) {
  expectOneComparison("g++ -fshort-wchar " + includes("host"));
}

TEST(StatusMacroCost, IsOneComparisonAndNoCallFromClang) {
  expectOneComparison("clang++ -fshort-wchar " + includes("host"));
}

TEST(StatusMacroCost, IsOneComparisonAndNoCallOnWindows) {
  expectOneComparison("clang++ --target=x86_64-pc-windows-msvc -fms-extensions -ffreestanding " +
                      includes("windows"));
}
