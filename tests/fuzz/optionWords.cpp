// The option splitter: against a model, against the bytes of the text, and against its own words
// quoted and split again.

#include "config/options/tOptionWords.h"
#include "ntoshost/faults.h"
#include "support/fuzzing.h"
#include "support/tExactText.h"
#include "trace/modelWords.h"

namespace {

using nOXDIAG100::tOptionWords;

std::string told(tWords const& words) {
  std::string text = std::to_string(words.size()) + " words:";
  for (std::string const& word : words) text += " " + readable(word);
  return text;
}

void demandWords(tWords const& seen, tWords const& wanted, char const* what) {
  demand(seen == wanted, what, [&] { return told(seen) + "\n  wanted " + told(wanted); });
}

tWords split(std::string const& text) {
  tExactText exact(text);
  tOptionWords const words(exact.get());
  demand(exact.is(text), "the text is left as it was", [&] { return readable(text); });
  demand(!words.hasFailed(), "splitting works", [&] { return readable(text); });
  demand((words.getWords() == nullptr) == (words.getCount() == 0), "no words are a null vector",
         [&] { return std::to_string(words.getCount()); });
  return {words.getWords(), words.getWords() + words.getCount()};
}

// What neither separates nor quotes is in the words, in its order.
std::string withoutBlanksAndQuotes(std::string const& text) {
  std::string rest;
  for (char const character : text) {
    if (!isModelBlank(character) && character != '"') rest += character;
  }
  return rest;
}

std::string joined(tWords const& words) {
  std::string text;
  for (std::string const& word : words) text += word;
  return text;
}

// Every word can be given in one of two ways: as it is, or in quotes.
std::string quoted(tWords const& words) {
  std::string text;
  for (std::string const& word : words) {
    bool const isPlain = word.find('"') != std::string::npos;
    text += isPlain ? word + " " : "\"" + word + "\" ";
  }
  return text;
}

void splitWithoutMemory(std::string const& text, bool hasWords) {
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  tOptionWords const words(text.c_str());
  ntoshost::clearFaults();
  bool const isEmpty = words.getCount() == 0 && words.getWords() == nullptr;
  demand(isEmpty && words.hasFailed() == hasWords, "without memory there are no words",
         [&] { return std::to_string(words.getCount()) + " words of " + readable(text); });
}

}  // namespace

void fuzzInput(std::string const& input) {
  std::string const text = upToNul(input);
  tWords const words = split(text);
  demandWords(words, modelWords(text), "text is split as the model says");
  demandEqual(withoutBlanksAndQuotes(joined(words)), withoutBlanksAndQuotes(text),
              "no character is lost");
  demandWords(split(quoted(words)), words, "words come back when quoted and split again");
  splitWithoutMemory(text, !words.empty());
}
