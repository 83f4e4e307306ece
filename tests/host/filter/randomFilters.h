#pragma once

// Expressions, terms and lines by chance, most of them nearly right.

#include <initializer_list>
#include <random>
#include <string>

#include "filterModel.h"

class tRandomFilters {
 public:
  explicit tRandomFilters(unsigned seed) : random(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random() % limit); }

  std::string oneOf(std::initializer_list<char const*> words) {
    return words.begin()[below(static_cast<unsigned>(words.size()))];
  }

  std::string blanks() { return oneOf({"", "", "", " ", "  ", "\t", " \n", "\v", "\f", "\r "}); }

  std::string fieldWord() {
    if (below(8) == 0) return oneOf({"", "colour", "Line", "linenumbers", "&", "|", "x", "comp&"});
    std::string const name =
        oneOf({"compname", "compver", "linenumber", "filename", "threadid", "verbosity"});
    return below(2) == 0 ? name : name.substr(0, 1 + below(static_cast<unsigned>(name.size())));
  }

  std::string operation() {
    if (below(8) == 0) return oneOf({"", "=", "!", "=!", "=>", "=<", "<>", "===", ">>", "!=="});
    return oneOf({"==", "!=", ">", "<", ">=", "<="});
  }

  // Few different ones, so that lines often meet them.
  std::string textValue() {
    return oneOf({"a", "b", "ab", "abc", "abd", "\x80", "\xFF", "a/b.cpp", "1.0.0f7", "A"});
  }

  std::string numberValue() {
    return oneOf({"0", "1", "2", "3", "26", "100", "0x1A", "0x1a", "2#10", "3#102", "007", "12x",
                  "x", "4294967295", "4294967296", "0x", "#1", "1#1", "0#0"});
  }

  std::string value() {
    if (below(12) == 0) return "";
    return below(2) == 0 ? textValue() : numberValue();
  }

  std::string term() { return fieldWord() + blanks() + operation() + blanks() + value(); }

  std::string connector() {
    if (below(12) == 0) return oneOf({"&", "|", "&&&", "|||", "&|", "&& &&", "||||"});
    return oneOf({"&&", "||", "&&", "||", " "});
  }

  std::string expression() {
    std::string text = blanks() + (below(3) == 0 ? connector() : "") + blanks();
    unsigned const count = below(5);
    for (unsigned index = 0; index < count; ++index) {
      text += (index == 0 ? "" : connector()) + blanks() + term() + blanks();
    }
    return below(20) == 0 ? text.substr(0, below(static_cast<unsigned>(text.size()) + 1)) : text;
  }

  // Bytes without any order.
  std::string noise() {
    std::string text;
    for (unsigned length = below(24); length != 0; --length) {
      text += oneOf({"&", "|", "=", "!", ">", "<", " ", "\t", "l", "c", "v", "t", "f", "1", "a",
                     "\"", "\xA0", "\x85"});
    }
    return text;
  }

  std::string fieldTerm() {
    std::string const behind = below(6) == 0 ? oneOf({" a|b", " a&b ", " \"", "  "}) : "";
    return operation() + blanks() + value() + behind;
  }

  std::string numberText() {
    std::string text;
    for (unsigned length = below(14); length != 0; --length) {
      text += oneOf({"0", "1",  "2", "7",  "9",          "0x",   "x",  "#",   "a",   "F", "g",
                     " ", "\t", "-", "12", "4294967295", "\xB1", "\n", "16#", "10#", "1"});
    }
    return text;
  }

  tModelLine line() {
    return {textValue(), textValue(), number(), textValue(), number(), number()};
  }

  uint32_t number() {
    constexpr uint32_t kNumbers[] = {0, 1, 2, 3, 5, 7, 12, 26, 99, 100, 101, 0xFFFFFFFF};
    return kNumbers[below(sizeof(kNumbers) / sizeof(kNumbers[0]))];
  }

 private:
  std::mt19937 random;
};
