#pragma once

// Tests of oxdiag-view as a user meets it.

#include "slotbus/demoTest.h"

constexpr char kView[] = OXDIAG_BINARY_DIR "/tools/oxdiagview/oxdiag-view";

// Of a counter with a thousand ticks in a microsecond, as all prefixes of one width.
inline std::string lineOf(std::string const& fields, std::string const& text) {
  constexpr size_t kWidth = 60;
  std::string prefix = "[" + fields;
  prefix.append(kWidth - 1 - prefix.size(), '-');
  return prefix + "] " + text + "\n";
}

class tViewTest : public tDemoTest {
 protected:
  tRun view(std::vector<std::string> arguments, std::string const& output = "output") const {
    arguments.insert(arguments.begin(), {kView, "--rate", "1GHz"});
    return runProgram(std::move(arguments), output);
  }

  tRun viewText(std::string const& text, std::vector<std::string> arguments = {}) const {
    arguments.push_back(write("trace", text));
    return view(std::move(arguments));
  }
};
