#pragma once

#include <optional>
#include <string>

#include "slotbus/host/tEndWatch.h"

// Serial port 1 of the host while the demo traces to it. It ends in a file, or in a terminal that
// any terminal program may watch.
class tSerialPort {
 public:
  ~tSerialPort();

  // Connects the port to a file, or to a new terminal. Returns false when that failed;
  // getProblem() is then a sentence for the user.
  bool connect(std::optional<std::string> const& file);

  // Names the terminal on standard error; gives a person at the keyboard time to watch it. Both do
  // nothing when there is no terminal.
  void announce() const;
  void waitForWatcher(tEndWatch* watch) const;

  // Waits until what was sent is read, at most so many milliseconds. Returns false when something
  // was lost; getProblem() is then a sentence for the user. True when nothing is connected.
  bool finish(unsigned int patience);

  std::string const& getProblem() const { return problem; }

 private:
  bool connectFile(std::string const& file);
  bool connectTerminal();

  bool isConnected = false;
  std::string terminal;
  std::string problem;
};
