#pragma once

// Tests of the report tool as a user meets it, and files for it.

#include "slotbus/demoTest.h"

constexpr char kReport[] = OXDIAG_BINARY_DIR "/tools/oxdiagreport/oxdiagreport";

constexpr char kEnglishWords[] = OXDIAG_SOURCE_DIR "/examples/slotbus/words/english.words";
constexpr char kGermanWords[] = OXDIAG_SOURCE_DIR "/examples/slotbus/words/german.words";

class tReportTest : public tDemoTest {
 protected:
  // Runs the tool with these arguments and the words of the slot bus.
  tRun report(std::vector<std::string> arguments, std::string const& output = "output") const {
    arguments.insert(arguments.begin(), {"--words", kEnglishWords});
    return reportWithoutWords(std::move(arguments), output);
  }

  tRun reportWithoutWords(std::vector<std::string> arguments,
                          std::string const& output = "output") const {
    arguments.insert(arguments.begin(), kReport);
    return runProgram(std::move(arguments), output);
  }

  // The name of a file with the statuses that the demo saves for a rack of this text.
  std::string save(std::string const& rackText, bool hasModules = false) const {
    std::vector<std::string> arguments = {write("rack.txt", rackText), "--save",
                                          pathOf("rack.statuses")};
    if (hasModules) arguments.push_back("--modules");
    run(std::move(arguments));
    return pathOf("rack.statuses");
  }
};
