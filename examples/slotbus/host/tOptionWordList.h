#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "oxdiagk/tConfigurable.h"

// The words of an option text, cut as the library cuts them: this is an object that is configured
// with the text and remembers what it was given.
class tOptionWordList : public nOXDIAG100::tConfigurable {
 public:
  explicit tOptionWordList(std::string const& text);
  ~tOptionWordList() override;

  std::vector<std::string> const& get() const { return words; }

  // Whether `second` follows `first` anywhere.
  bool hasPair(std::string_view first, std::string_view second) const;

  using tConfigurable::configure;
  void configure() override;
  void configure(int argc, char** argv) override;
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override;
  void pushConfiguration() override;
  void popConfiguration() override;

 private:
  std::vector<std::string> words;
};
