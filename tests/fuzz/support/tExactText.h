#pragma once

// A copy of text in a block that ends where the text ends, so that the address sanitizer sees a
// read behind it. (A short std::string keeps its text inside itself, with room behind it.)

#include <cstring>
#include <memory>
#include <string>

class tExactText {
 public:
  // With a terminator, or without.
  explicit tExactText(std::string const& text, bool isTerminated = true)
      : size(text.size() + (isTerminated ? 1 : 0)), block(new char[size]) {
    std::memcpy(block.get(), text.c_str(), size);
  }

  char* get() { return block.get(); }

  // Whether nobody wrote into it.
  bool is(std::string const& text) const {
    return std::memcmp(block.get(), text.c_str(), size) == 0;
  }

 private:
  size_t size;
  std::unique_ptr<char[]> block;
};

// The text up to its first NUL, which is all that a function sees that takes terminated text.
inline std::string upToNul(std::string const& text) {
  return text.c_str();
}
