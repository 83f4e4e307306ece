#pragma once

// The assertion configuration once more, on strings, allocations included.

#include <array>
#include <map>

#include "assert/tModelMemory.h"
#include "trace/modelWords.h"

class tAssertModel {
 public:
  static constexpr size_t kSwitches = 8;

  tAssertModel();

  // False when memory for the words was lacking.
  bool configure(std::string const& options);
  void configure(tWords const& words);
  void push();
  void pop();

  void set(std::string const& category, size_t index, bool isOn);
  bool isOn(std::string const& category, size_t index) const;

  // As inquire writes it.
  std::string text() const;

  // Whether every category's name is read back as the name it is.
  bool hasSayableNames() const;

  tModelMemory memory;

 private:
  using tSwitches = std::array<bool, kSwitches>;
  struct tSaved {
    std::string category;
    std::string text;
  };

  bool readSwitch(tWords const& words, size_t& next);
  void readCategory(std::string const& word);

  std::map<std::string, tSwitches> categories;
  std::string current = "default";
  bool hasLost = false;  // the category that the words are about could not be made
  std::vector<tSaved> saved;
  size_t capacity = 0;  // of the library's stack
};
