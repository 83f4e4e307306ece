#pragma once

// Option text cut into words; every part of the library that reads option text cuts it here.

#include "ntos/types.h"

namespace nOXDIAG100 {

// Cuts `text` in place into at most `capacity` words, by the rules of
// tConfigurable::configure(options). Returns their count, or -1, with the text unchanged, when
// there are more. Any IRQL.
int cutOptionWords(char* text, char** words, int capacity);

// The words of one option text, as configure(argc, argv) takes them. The rules of the cutting are
// those of tConfigurable::configure(options).
//
// The words are copies: the text may change or go while they are in use, and they live as long as
// this object, in one scratch allocation of five times the text (none when there are no words).
// PASSIVE_LEVEL.
class tOptionWords {
 public:
  // Null counts as an empty text.
  explicit tOptionWords(char const* text);
  ~tOptionWords();

  tOptionWords(tOptionWords const&) = delete;
  tOptionWords& operator=(tOptionWords const&) = delete;

  // How many words there are; 0 also when they could not be allocated.
  int getCount() const { return count; }

  // The words, which the receiver may change in place; null when there are none.
  char** getWords() const { return words; }

  // True when memory was exhausted, so that the words of the text are missing.
  bool hasFailed() const { return failed; }

 private:
  char** words = nullptr;  // with the copy of the text behind them
  int count = 0;
  bool failed = false;
};

}  // namespace nOXDIAG100
