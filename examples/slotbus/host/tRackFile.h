#pragma once

#include <string>

// The file of a rack on the development host, read whole.
class tRackFile {
 public:
  explicit tRackFile(std::string file) : name(std::move(file)) {}

  // Reads the file, which may also be a pipe. Returns true when the text is there; otherwise
  // getProblem() is one sentence for the user.
  bool read();

  std::string const& getName() const { return name; }
  std::string const& getText() const { return text; }
  std::string const& getProblem() const { return problem; }

 private:
  bool readFrom(int file);
  bool fail(std::string const& reason);

  std::string name;
  std::string text;
  std::string problem;
};
