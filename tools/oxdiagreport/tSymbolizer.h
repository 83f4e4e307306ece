#pragma once

#include <set>
#include <string>
#include <vector>

#include "compiler/types.h"
#include "oxdiagreport/symbolAnswer.h"
#include "oxdiagreport/tChildProgram.h"

// LLVM's symbolizer, llvm-symbolizer of Debian's package llvm, as a program that answers until this
// object ends. One that ends at a module, or says nothing of it for a minute, is started again for
// the next one, and is not asked of that module any more.
class tSymbolizer {
 public:
  // Finds the program on PATH and starts it. Returns false when there is none; `problem` is then
  // one sentence part.
  bool start(std::string& problem);

  // What is at `offset` from the base of the module in `file`, innermost first: the functions that
  // the compiler put into one another. Empty when nothing is known, or the program does not answer.
  std::vector<tSourcePlace> find(std::string const& file, u64 offset);

 private:
  bool startProgram();
  bool readLine(std::string& line);

  std::string symbolizer;               // its file
  std::set<std::string> withoutAnswer;  // files of modules
  tChildProgram program;
  std::string received;
};
