// Prints saved statuses.

#include <cstdio>

#include "oxdiagreport/exitCodes.h"
#include "oxdiagreport/inputFile.h"
#include "oxdiagreport/jsonFormat.h"
#include "oxdiagreport/reportOptions.h"
#include "oxdiagreport/system.h"
#include "oxdiagreport/tCallStackReader.h"
#include "oxdiagreport/tLanguage.h"
#include "oxdiagreport/tStatusFile.h"
#include "oxdiagreport/textFormat.h"
#include "slotbus/host/tModules.h"
#include "system/fileNames.h"

using nOXDIAG100::tStatus2;

namespace {

int complain(std::string const& sentence, int exitCode) {
  std::fprintf(stderr, "oxdiagreport: %s.\n", sentence.c_str());
  return exitCode;
}

void print(std::string const& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

// What stands in front of damage is printed; JSON is an array in any case.
void printStatuses(tStatusFile& file, tReportOptions const& options, tWordFile const& words,
                   tCallStackReader& stacks) {
  tLanguage const language(options.language, words);
  bool const isJson = options.format == tFormat::kJson;
  if (isJson) print("[");
  size_t number = 0;
  tStatus2 status;
  while (!file.isAtEnd() && file.read(status)) {
    ++number;
    std::vector<tFrame> frames = stacks.framesOf(status, file.getModules());
    if (isJson) {
      print((number == 1 ? "\n" : ",\n") + jsonOf(status, language, frames, file.getModules()));
    } else {
      // Bare addresses are of no use to a person.
      if (file.getModules().empty() && !stacks.hasSymbols()) frames.clear();
      print((number == 1 ? "" : "\n") + textOf(status, number, language, frames));
    }
  }
  if (isJson) print(number == 0 ? "]\n" : "\n]\n");
}

// Returns the exit code of a file that cannot be read as words, kExitGood for good ones.
int readWords(tReportOptions const& options, tWordFile& words) {
  for (std::string const& name : options.words) {
    std::string problem;
    auto const text = readInput(name, problem);
    if (!text) return complain(problem, kExitNoFile);
    if (!words.add(*text, problem)) return complain("'" + name + "', " + problem, kExitBadFile);
  }
  return kExitGood;
}

// The same of the folder with symbols. Without a symbolizer there is a report all the same.
int findSymbols(tReportOptions const& options, tCallStackReader& stacks) {
  std::string problem;
  if (!options.symbols) return kExitGood;
  if (!stacks.useSymbols(*options.symbols, problem)) return complain(problem, kExitNoFile);
  if (!problem.empty()) complain(problem, kExitGood);
  return kExitGood;
}

int runReport(tReportOptions const& options, std::string const& bytes) {
  tWordFile words;
  tCallStackReader stacks;
  int const wordsCode = readWords(options, words);
  if (wordsCode != kExitGood) return wordsCode;
  int const symbolsCode = findSymbols(options, stacks);
  if (symbolsCode != kExitGood) return symbolsCode;
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tStatusFile file(bytes);
  printStatuses(file, options, words, stacks);
  bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (!isWritten) return complain("cannot write to standard output", kExitNoOutput);
  if (file.isAtEnd()) return kExitGood;
  std::string const name = options.file == "-" ? "standard input" : "'" + options.file + "'";
  return complain(name + " is " + file.getProblem(), kExitBadFile);
}

}  // namespace

int main(int argc, char** argv) {
  prepareStandardStreams();
  int exitCode = kExitGood;
  auto const options = readOptions(commandWords(argc, argv), exitCode);
  if (!options) return exitCode;
  std::string problem;
  auto const bytes = readInput(options->file, problem);
  return bytes ? runReport(*options, *bytes) : complain(problem, kExitNoFile);
}
