// Prints saved statuses.

#include <cstdio>

#include "oxdiagreport/exitCodes.h"
#include "oxdiagreport/inputFile.h"
#include "oxdiagreport/jsonFormat.h"
#include "oxdiagreport/reportOptions.h"
#include "oxdiagreport/system.h"
#include "oxdiagreport/tLanguage.h"
#include "oxdiagreport/tStatusFile.h"
#include "oxdiagreport/textFormat.h"
#include "slotbus/host/tModules.h"

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
void printStatuses(tStatusFile& file, tReportOptions const& options) {
  tLanguage const language(options.language);
  bool const isJson = options.format == tFormat::kJson;
  if (isJson) print("[");
  size_t number = 0;
  tStatus2 status;
  while (!file.isAtEnd() && file.read(status)) {
    ++number;
    if (isJson) print((number == 1 ? "\n" : ",\n") + jsonOf(status, language));
    if (!isJson) print((number == 1 ? "" : "\n") + textOf(status, number, language));
  }
  if (isJson) print(number == 0 ? "]\n" : "\n]\n");
}

int runReport(tReportOptions const& options, std::string const& bytes) {
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tStatusFile file(bytes);
  printStatuses(file, options);
  bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (!isWritten) return complain("cannot write to standard output", kExitNoOutput);
  if (file.isAtEnd()) return kExitGood;
  std::string const name = options.file == "-" ? "standard input" : "'" + options.file + "'";
  return complain(name + " is " + file.getProblem(), kExitBadFile);
}

}  // namespace

int main(int argc, char** argv) {
  prepareStandardOutput();
  int exitCode = kExitGood;
  auto const options = readOptions(commandWords(argc, argv), exitCode);
  if (!options) return exitCode;
  std::string problem;
  auto const bytes = readInput(options->file, problem);
  return bytes ? runReport(*options, *bytes) : complain(problem, kExitNoFile);
}
