#pragma once

// What option words are; every reader of options asks here.

namespace nOXDIAG100 {

// What a word says about the switch before it.
enum class tOnOff { kNeither, kOff, kOn };

// Words that differ do so within a few characters, for which a call would be dear.
inline bool isEqual(char const* left, char const* right) {
  for (; *left == *right; ++left, ++right) {
    if (*left == 0) return true;
  }
  return false;
}

// True for a word that begins with "--".
inline bool isOption(char const* word) {
  return word[0] == '-' && word[1] == '-';
}

// How many words a reader takes of a list: all, or those before the first null one.
inline int countWords(int argc, char** argv) {
  int count = 0;
  while (argv != nullptr && count < argc && argv[count] != nullptr) ++count;
  return count;
}

// "on", "off", or neither.
inline tOnOff readOnOff(char const* word) {
  if (isEqual(word, "on")) return tOnOff::kOn;
  return isEqual(word, "off") ? tOnOff::kOff : tOnOff::kNeither;
}

}  // namespace nOXDIAG100
