#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oxdiagview {

// The bytes of a file, or of standard input for "-".
class tByteSource {
 public:
  explicit tByteSource(std::string const& name);
  ~tByteSource() { close(); }
  tByteSource(tByteSource const&) = delete;
  tByteSource& operator=(tByteSource const&) = delete;

  // The next bytes, valid until the next call; none at the end, and when reading failed. Of a pipe
  // that is written slowly it returns what is there.
  std::string_view read();

  // Whether the file could not be opened, or reading failed; and that as a part of a sentence.
  bool hasFailed() const { return !reason.empty(); }
  std::string getProblem() const;

  // Whether these bytes are those of the file `path`, or of standard output if it is empty, which
  // would be lost or grow without an end when that is written.
  bool isAlso(std::string const& path) const;

  // Whether the name belongs to another file meanwhile, or the file became shorter than what was
  // read. False while there is no file of that name.
  bool wasReplaced() const;

  // Begins with the file that has the name now.
  void reopen();

  // Whether it can be read again: a file with a name, and no pipe.
  bool isFile() const;

 private:
  void open();
  void close();
  bool isStandard() const { return name == "-"; }

  std::string const name;
  int file = -1;
  uint64_t position = 0;
  std::string reason;
  std::vector<char> portion;
};

}  // namespace oxdiagview
