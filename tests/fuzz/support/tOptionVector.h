#pragma once

// Words as configure takes them: each in a block of its own size, and so is the vector, which ends
// with a null word.

#include <memory>
#include <vector>

#include "support/tExactText.h"
#include "trace/modelWords.h"

class tOptionVector {
 public:
  explicit tOptionVector(tWords const& words) : vector(new char*[words.size() + 1]()) {
    for (std::string const& word : words) texts.emplace_back(word);
    for (size_t index = 0; index < texts.size(); ++index) vector[index] = texts[index].get();
  }

  // Without the null word.
  int getCount() const { return static_cast<int>(texts.size()); }
  char** get() { return vector.get(); }

 private:
  std::vector<tExactText> texts;
  std::unique_ptr<char*[]> vector;
};

// The words of a list with semicolons between them, so that blanks and quotes can be in words.
inline tWords listedWords(std::string const& list) {
  tWords words;
  for (size_t begin = 0; begin <= list.size();) {
    size_t const end = std::min(list.find(';', begin), list.size());
    words.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return words;
}
