#pragma once

// The formatter of putf once more, on strings, and the arguments that a format takes. Every
// argument has eight bytes of its own, in one block that ends behind the last one, and text has
// blocks of just the size that may be read, so that the address sanitizer sees whoever takes more.

#include <cstdarg>
#include <memory>
#include <string>
#include <vector>

#include "ntos/types.h"

// What the conversions of a format are given, in turn, over and over.
struct tFormatValues {
  std::vector<u64> numbers;
  std::vector<std::string> texts;
  bool hasNull = false;  // every other text is a null pointer
};

class tFormatModel {
 public:
  tFormatModel(std::string const& format, tFormatValues const& values);

  // Whether the C library defines the same outcome.
  bool isCommon() const { return common; }

  // The whole text, or at least as much of it as no buffer has room for.
  std::string const& text() const { return output; }

  size_t argumentCount() const { return arguments.size(); }
  u64 argument(size_t index) const { return arguments[index]; }

  // Calls function(list) with the arguments as a variable argument list.
  template <class Function>
  auto withArguments(Function function) const;

 private:
  // Fields that come in this order, each of which may be missing.
  struct tConversion {
    bool isLeft = false;
    bool hasPlus = false;
    bool hasBlank = false;
    bool isAlternate = false;
    bool hasZeros = false;
    i64 width = 0;
    i64 precision = -1;
    char length = 0;
    char letter = 0;
  };

  bool convert(size_t& position);
  tConversion read(size_t& position);
  void readFlags(tConversion& conversion, size_t& position);
  i64 readCount(size_t& position);
  void write(tConversion const& conversion);
  void writeNumber(tConversion const& conversion);
  void writeText(tConversion const& conversion);
  void writePadded(tConversion const& conversion, std::string const& text);
  bool isCommonConversion(tConversion const& conversion) const;

  u64 takeNumber();
  u64 addBlock(std::string const& bytes);

  std::string const& format;
  tFormatValues const& values;
  size_t usedNumbers = 0;
  size_t usedTexts = 0;
  std::vector<u64> arguments;
  std::vector<std::unique_ptr<char[]>> blocks;
  std::string output;
  bool common = true;
};

// A list of which all registers are used up, so that the arguments are taken from memory.
template <class Function>
auto tFormatModel::withArguments(Function function) const {
  constexpr unsigned kAllGeneral = 48;
  constexpr unsigned kAllVector = 176;
  std::unique_ptr<u64[]> const block(new u64[arguments.size()]);
  for (size_t index = 0; index < arguments.size(); ++index) block[index] = arguments[index];
  va_list list;
  list->gp_offset = kAllGeneral;
  list->fp_offset = kAllVector;
  list->overflow_arg_area = block.get();
  list->reg_save_area = nullptr;
  return function(list);
}
