#pragma once

// Tests of the report tool as a user meets it, and files for it.

#include "slotbus/demoTest.h"

constexpr char kReport[] = OXDIAG_BINARY_DIR "/tools/oxdiagreport/oxdiagreport";

class tReportTest : public tDemoTest {
 protected:
  tRun report(std::vector<std::string> arguments, std::string const& output = "output") const {
    arguments.insert(arguments.begin(), kReport);
    return runProgram(std::move(arguments), output);
  }

  // The name of a file with the statuses that the demo saves for a rack of this text.
  std::string save(std::string const& rackText) const {
    run({write("rack.txt", rackText), "--save", pathOf("rack.statuses")});
    return pathOf("rack.statuses");
  }
};
