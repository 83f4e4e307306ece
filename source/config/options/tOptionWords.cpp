#include "config/options/tOptionWords.h"

#include "vexk/memory.h"

namespace nOXDIAG100 {
namespace {

// Not isspace: the bytes above 0x7F are characters of words in every locale.
bool isBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

size_t countBlanks(char const* text) {
  size_t count = 0;
  while (isBlank(text[count])) ++count;
  return count;
}

// Offsets from the first character of a word, its opening quote included.
struct tWord {
  size_t begin;
  size_t end;   // where the terminator belongs
  size_t next;  // where the search for the next word begins
};

tWord findWord(char const* text) {
  bool const isQuoted = *text == '"';
  size_t const begin = isQuoted ? 1 : 0;
  size_t end = begin;
  while (text[end] != 0 && (isQuoted ? text[end] != '"' : !isBlank(text[end]))) ++end;
  return {begin, end, text[end] == 0 ? end : end + 1};
}

int countWords(char const* text) {
  int count = 0;
  for (text += countBlanks(text); *text != 0; text += countBlanks(text)) {
    text += findWord(text).next;
    ++count;
  }
  return count;
}

}  // namespace

int cutOptionWords(char* text, char** words, int capacity) {
  int const wordCount = countWords(text);
  if (wordCount > capacity) return -1;
  for (int index = 0; index < wordCount; ++index) {
    text += countBlanks(text);
    tWord const word = findWord(text);
    words[index] = text + word.begin;
    text[word.end] = 0;
    text += word.next;
  }
  return wordCount;
}

tOptionWords::tOptionWords(char const* text) {
  int const wordCount = text == nullptr ? 0 : countWords(text);
  if (wordCount == 0) return;
  u64 const length = __builtin_strlen(text);
  allocate(wordCount, length);
  if (failed) return;
  __builtin_memcpy(copy, text, length + 1);
  count = cutOptionWords(copy, words, wordCount);
}

tOptionWords::~tOptionWords() {
  _memDelete(words);
  _memDelete(copy);
}

void tOptionWords::allocate(int wordCount, u64 textLength) {
  i32 status = 0;
  u64 const vectorSize = static_cast<u64>(wordCount) * sizeof(char*);
  words = static_cast<char**>(_memNewUsingCRT(vectorSize, kMemScratch, status));
  copy = static_cast<char*>(_memNewUsingCRT(textLength + 1, kMemScratch, status));
  failed = copy == nullptr;
  if (failed) {
    _memDelete(words);
    words = nullptr;
  }
}

}  // namespace nOXDIAG100
