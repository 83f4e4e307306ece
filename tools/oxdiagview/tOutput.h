#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace oxdiagview {

// Text on its way into a file, in large portions.
class tOutput {
 public:
  // `file` outlives the output, and is open for writing.
  explicit tOutput(std::FILE* file) : file(file) {}

  void put(std::string_view text) {
    buffer += text;
    if (buffer.size() >= kPortion) flush();
  }
  void put(char character) { buffer += character; }

  // Hands all to the system.
  void flush();

  // Whether everything has arrived so far.
  bool isGood() const { return !hasFailed; }

 private:
  static constexpr size_t kPortion = size_t{64} << 10;

  std::FILE* const file;
  std::string buffer;
  bool hasFailed = false;
};

}  // namespace oxdiagview
