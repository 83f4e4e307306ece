#pragma once

#include <optional>
#include <string>

// Serial port 1 of the host while the demo traces to it. It ends in a file, or in a terminal that
// any terminal program may watch.
class tSerialPort {
 public:
  ~tSerialPort();

  // Connects the port to a file, or to a new terminal, whose name goes to standard error; a person
  // at the keyboard is given time to watch it. Returns false when that failed; getProblem() is then
  // a sentence for the user.
  bool connect(std::optional<std::string> const& file);

  // Waits until what was sent is read, at most kReaderPatience. Returns false when something was
  // lost; getProblem() is then a sentence for the user. True when nothing is connected.
  bool finish();

  std::string const& getProblem() const { return problem; }

 private:
  static constexpr unsigned int kReaderPatience = 3000;  // milliseconds

  bool connectFile(std::string const& file);
  bool connectTerminal();

  bool isConnected = false;
  std::string problem;
};
