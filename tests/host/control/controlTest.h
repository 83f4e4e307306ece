#pragma once

// oxdiagctl as a user meets it, and a program that it reaches.

#include "control/tServingProgram.h"
#include "slotbus/demoTest.h"

class tControlTest : public tDemoTest {
 protected:
  // Runs oxdiagctl with these arguments, at the program's socket.
  tRun control(std::vector<std::string> arguments, std::string const& output = "output") const {
    arguments.insert(arguments.begin(), {kControl, "--at", program.getPath()});
    return runProgram(std::move(arguments), output);
  }

  // What it prints when all goes well.
  std::string told(std::vector<std::string> const& arguments) const {
    tRun const run = control(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    return run.output;
  }

  void expectFailure(tRun const& run, int exitCode, std::string const& sentence) const {
    EXPECT_EQ(run.exitCode, exitCode);
    EXPECT_EQ(run.errors, "oxdiagctl: " + sentence + ".\n");
    EXPECT_EQ(run.output, "");
  }

  tServingProgram program;
};
