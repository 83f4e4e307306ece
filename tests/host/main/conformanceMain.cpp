// The conformance tests on the host, inside started modules, as in a driver. What else the program
// does with them, each in the lives of the modules that it starts:
//
//   --fail-each-call [--repeats N] [--rounds N] [--test NAME [--call N]] [--points FILE]
//       each test again and again, each time with another of its fallible calls failing: of those
//       that come from one place the first N, or 1; of all these rounds N, evenly spread
//   --fail-randomly SECONDS [--seed N]
//       calls that fail at random; with 0 SECONDS only the round of the seed
//   --at-level apc | dispatch [--below FILE]
//       each test at this IRQL, and how it ended; but those of the file, "Suite: Test Test" a line

#include <gtest/gtest.h>

#include <cstdio>

#include "tCommand.h"
#include "tDrive.h"
#include "tLevels.h"
#include "tModules.h"
#include "tRounds.h"

namespace {

int runAsTests() {
  tModules modules;
  if (!modules.start()) {
    std::fputs("conformance_tests: the modules did not start\n", stderr);
    return 1;
  }
  tDrive const drive;
  if (!drive.mount()) {
    std::fputs("conformance_tests: there is no folder for drive C\n", stderr);
    return 1;
  }
  int const result = RUN_ALL_TESTS();
  std::string const left = modules.stop();
  std::fputs(left.c_str(), stderr);
  return left.empty() ? result : 1;
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  tCommand const command(argc, argv);
  switch (command.mode) {
    case tCommand::kTests:
      return runAsTests();
    case tCommand::kFailEachCall:
      return failEachCall(command);
    case tCommand::kFailRandomly:
      return failRandomly(command);
    case tCommand::kAtLevel:
      return runAtLevel(command);
    case tCommand::kWrong:
      break;
  }
  std::fputs("conformance_tests: see the head of tests/host/main/conformanceMain.cpp\n", stderr);
  return 2;
}
