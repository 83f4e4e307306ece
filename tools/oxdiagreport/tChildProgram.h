#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A program that is asked on its standard input and answers on its standard output, until this
// object ends. What it says of errors goes nowhere.
class tChildProgram {
 public:
  tChildProgram() = default;
  ~tChildProgram() { stop(); }
  tChildProgram(tChildProgram const&) = delete;
  tChildProgram& operator=(tChildProgram const&) = delete;

  // The file that runs under this name on PATH; empty when there is none.
  static std::string findOnPath(std::string const& name);

  // Starts the file. The arguments are single words. Returns false when that cannot be done.
  bool start(std::string const& file, std::vector<std::string> const& arguments);
  bool isStarted() const { return program != kNone; }

  bool ask(std::string const& question);

  // Appends what the program says next. Returns false when it ends, or says nothing for a minute.
  bool listen(std::string& answer);

  void stop();

 private:
  static constexpr std::intptr_t kNone = -1;
  static constexpr int kPatience = 60'000;  // milliseconds for one answer

  // A process and the ends of its streams, as the system names them.
  std::intptr_t program = kNone;
  std::intptr_t questions = kNone;
  std::intptr_t answers = kNone;
};
