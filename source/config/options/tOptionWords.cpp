#include "config/options/tOptionWords.h"

#include "vexk/memory.h"

namespace nOXDIAG100 {
namespace {

// Not isspace: the bytes above 0x7F are characters of words in every locale. Most characters of a
// text are above the space, which the first comparison tells.
bool isBlank(char character) {
  return static_cast<u8>(character) <= ' ' &&
         (character == ' ' || (character >= '\t' && character <= '\r'));
}

bool endsWord(char character) {
  return static_cast<u8>(character) <= ' ' && (character == 0 || isBlank(character));
}

template <class tCharacter>
tCharacter* skipBlanks(tCharacter* text) {
  while (isBlank(*text)) ++text;
  return text;
}

// Where the word that begins with the quote at `text` ends: at the closing one, or at the end.
template <class tCharacter>
tCharacter* skipQuoted(tCharacter* text) {
  do ++text;
  while (*text != 0 && *text != '"');
  return text;
}

// Gives the first character of each word, and the one where its terminator belongs, to `take`,
// which may write that terminator.
template <class tCharacter, class tTake>
void takeWords(tCharacter* text, tTake take) {
  for (text = skipBlanks(text); *text != 0; text = skipBlanks(text)) {
    bool const isQuoted = *text == '"';
    tCharacter* const begin = isQuoted ? text + 1 : text;
    if (isQuoted) {
      text = skipQuoted(text);
    } else {
      while (!endsWord(*text)) ++text;
    }
    bool const isLast = *text == 0;
    take(begin, text);
    if (isLast) return;
    ++text;
  }
}

int cutWords(char* text, char** words) {
  int count = 0;
  takeWords(text, [&](char* begin, char* end) {
    words[count++] = begin;
    *end = 0;
  });
  return count;
}

// A word takes two characters at least, but for the last one.
u64 mostWords(u64 textLength) {
  return textLength / 2 + 1;
}

}  // namespace

int cutOptionWords(char* text, char** words, int capacity) {
  int wordCount = 0;
  takeWords(text, [&](char const*, char const*) { ++wordCount; });
  return wordCount > capacity ? -1 : cutWords(text, words);
}

tOptionWords::tOptionWords(char const* text) {
  if (text == nullptr) return;
  text = skipBlanks(text);
  if (*text == 0) return;
  u64 const length = __builtin_strlen(text);
  u64 const wordsSize = mostWords(length) * sizeof(char*);
  i32 status = 0;
  words = static_cast<char**>(_memNewUsingCRT(wordsSize + length + 1, kMemScratch, status));
  failed = words == nullptr;
  if (failed) return;
  char* const copy = reinterpret_cast<char*>(words) + wordsSize;
  __builtin_memcpy(copy, text, length);
  copy[length] = 0;
  count = cutWords(copy, words);
}

tOptionWords::~tOptionWords() {
  _memDelete(words);
}

}  // namespace nOXDIAG100
