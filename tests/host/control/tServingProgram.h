#pragma once

// A program with the library in it that other processes reach, beside the test: a child that starts
// the modules, serves at a path, and ends with the object.

#include <sys/types.h>

#include <filesystem>
#include <string>

class tServingProgram {
 public:
  tServingProgram();
  explicit tServingProgram(uid_t user);  // whom only root can choose
  ~tServingProgram();
  tServingProgram(tServingProgram const&) = delete;
  tServingProgram& operator=(tServingProgram const&) = delete;

  std::string const& getPath() const { return path; }

  // A file in the folder that is the program's drive C:.
  std::filesystem::path pathOf(std::string const& name) const { return folder / name; }
  std::string readFile(std::string const& name) const;

  // Has the program trace a line.
  void trace() const;

  // Ends it; its exit code, which is 0 when it has stopped its server, unloaded the library and
  // left nothing behind.
  int stop();

  void kill();

 private:
  [[noreturn]] void serve(uid_t user, int commands, int answers) const;

  std::filesystem::path folder;
  std::string path;
  int commands = -1;
  int answers = -1;
  pid_t child = 0;
};
