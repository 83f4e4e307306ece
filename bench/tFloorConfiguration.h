#pragma once

#include <array>
#include <cstddef>

// The least that reading an option string can be: a copy of the text cut at blanks in place, each
// word compared with a table, a number stored. It knows no quotes, no filter language, and no order
// in which things take effect; the same options are read by the C library's getopt_long besides.
class tFloorConfiguration {
 public:
  static constexpr std::size_t kSwitchCount = 14;

  // Each reads the whole text and returns how many options it knew.
  int readByHand(char const* text);
  int readByGetopt(char const* text);

 private:
  static constexpr std::size_t kMaxText = 512;
  static constexpr std::size_t kMaxWords = 48;

  std::size_t cut(char const* text);
  bool readOption(char const* const* word, char const* const* end);

  char copy[kMaxText] = {};
  std::array<char*, kMaxWords> words = {};
  std::array<unsigned, kSwitchCount> switches = {};
  unsigned width = 0;
  char const* filter = nullptr;
};
