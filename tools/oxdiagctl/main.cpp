// Sets the library in a running program, or in the kernel, from outside.

#include <cstdio>
#include <initializer_list>

#include "options/optionTable.h"
#include "options/toolVersion.h"
#include "options/utf8Text.h"
#include "oxdiagctl/controlOptions.h"
#include "oxdiagctl/libraryState.h"
#include "oxdiagctl/objectCommand.h"
#include "oxdiagctl/print.h"
#include "oxdiagctl/tFailure.h"
#include "oxdiagctl/tTunnel.h"

namespace {

void listObjects(tControlOptions const& options) {
  auto const channel = openRequestChannel(options.place);
  for (tOptionLanguage const* language : {&kTraceLanguage, &kAssertLanguage}) {
    tTunnel const tunnel(*channel, language->name);
    if (tunnel.isThere()) print(std::string(language->name) + "\n");
  }
}

void showVersions(tControlOptions const& options) {
  print(std::string("oxdiagctl  ") + getToolVersion() + "\n");
  auto const channel = openRequestChannel(options.place);
  auto const state = askLibraryState(*channel);
  if (!state) throw tFailure{kExitNotTaken, "the library there does not report its version"};
  std::string build;
  appendForTerminal(build, state->build);
  print("library    " + build + "\n");
}

// For the shell, which completes them.
void listWords(std::string const& name) {
  for (tOptionLanguage const* language : {&kTraceLanguage, &kAssertLanguage}) {
    if (language->name != name) continue;
    for (tOption const& option : language->options) print(std::string(option.word) + "\n");
  }
}

void runCommand(tControlOptions const& options) {
  switch (options.command) {
    case tCommand::kList:
      return listObjects(options);
    case tCommand::kTrace:
      return runObjectCommand(kTraceLanguage, options);
    case tCommand::kAssert:
      return runObjectCommand(kAssertLanguage, options);
    case tCommand::kVersion:
      return showVersions(options);
    case tCommand::kWords:
      return listWords(options.words.front());
  }
}

int complain(tFailure const& failure) {
  std::string sentence;
  appendForTerminal(sentence, failure.sentence);
  std::fprintf(stderr, "oxdiagctl: %s.\n", sentence.c_str());
  return failure.code;
}

}  // namespace

int main(int argc, char** argv) {
  int exitCode = kExitGood;
  auto const options = readOptions(argc, argv, exitCode);
  if (!options) return exitCode;
  try {
    runCommand(*options);
    if (!isPrinted()) throw tFailure{kExitNoOutput, "cannot write to standard output"};
    return kExitGood;
  } catch (tFailure const& failure) {
    isPrinted();
    return complain(failure);
  }
}
