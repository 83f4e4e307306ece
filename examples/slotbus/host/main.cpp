// The program around the component on the development host.

#include <cstdio>

#include "ntoshost/executive.h"
#include "ntoshost/files.h"
#include "options/filterCheck.h"
#include "options/tOptionCheck.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/serve.h"
#include "slotbus/host/tModules.h"
#include "slotbus/host/tOptionWordList.h"
#include "slotbus/host/tProgramRack.h"
#include "slotbus/host/tRackFile.h"
#include "slotbus/host/tRackMachine.h"
#include "slotbus/host/tSerialPort.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tTrace;

namespace {

int complain(std::string const& sentence, int exitCode) {
  std::fprintf(stderr, "slotbus_demo: %s.\n", sentence.c_str());
  return exitCode;
}

// The trace is what the demo is about, so it goes where a program's result goes.
void printToStandardOutput(void*, char const* text, size_t length) {
  std::fwrite(text, 1, length, stdout);
}

void applyFilter(std::string expression, tTrace& trace) {
  char option[] = "--filter";
  char* words[] = {option, expression.data()};
  trace.configure(2, words);
}

std::optional<std::string> findProblem(tOptionLanguage const& language, std::string const& text) {
  tOptionWordList const list(text);
  auto const problem = tOptionCheck(language, list.get()).findProblem();
  return problem ? std::optional(std::string("--").append(language.name) + ": " + *problem)
                 : std::nullopt;
}

// What is wrong with what the user typed for the library, if anything.
std::optional<std::string> findProblem(tDemoOptions const& options) {
  if (options.filter) {
    if (auto const problem = findFilterProblem(*options.filter)) {
      return "in the filter, " + *problem;
    }
  }
  auto inTrace = findProblem(kTraceLanguage, options.trace);
  if (inTrace) return inTrace;
  return findProblem(kAssertLanguage, options.assertions);
}

// Plugs the rack in, which has it read, and pulls it out again, at once or when it was served.
int plugIn(tDemoOptions const& options, tRackFile const& file, tTrace& trace) {
  tProgramRack rack(options, file, trace);
  tRackMachine machine(rack);
  if (!machine.isRunning()) return complain("the driver cannot be started", kExitNoModule);
  if (rack.getResult() == kExitNoOutput) return complain(rack.getProblem(), kExitNoOutput);
  if (!options.serves) return rack.getResult();
  auto const problem = serve(machine, options.socket);
  return problem ? complain(*problem, kExitNoOutput) : kExitGood;
}

int runRack(tDemoOptions const& options, tRackFile const& file) {
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration::getInstance().configure(options.assertions.c_str());
  trace.configure(options.trace.c_str());
  if (options.filter) applyFilter(*options.filter, trace);
  return plugIn(options, file, trace);
}

// Connects what the trace is sent to besides standard output.
std::optional<std::string> connectDevices(tDemoOptions const& options, tSerialPort& serialPort) {
  tOptionWordList const words(options.trace);
  std::string const folder = options.driveC.value_or(".");
  bool const needsDrive = options.driveC || words.hasPair("--destination", "file");
  if (needsDrive && !ntoshost::mountDrive('C', folder.c_str())) {
    return "cannot use the folder '" + folder + "' as drive C:";
  }
  bool const needsPort = options.serial || words.hasPair("--destination", "serial");
  if (needsPort && !serialPort.connect(options.serial)) return serialPort.getProblem();
  return std::nullopt;
}

int runConnected(tDemoOptions const& options, tRackFile const& file) {
  if (options.serves) holdEndSignals();
  tSerialPort serialPort;
  if (auto const problem = connectDevices(options, serialPort)) {
    return complain(*problem, kExitNoOutput);
  }
  ntoshost::setDebugPrintSink(printToStandardOutput, nullptr);
  int const result = runRack(options, file);
  ntoshost::requireNoDevices("slotbus_demo");
  ntoshost::requireNoOutstanding("slotbus_demo");
  ntoshost::requireNoHandles("slotbus_demo");
  bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (!isWritten) return complain("cannot write to standard output", kExitNoOutput);
  return serialPort.finish() ? result : complain(serialPort.getProblem(), kExitNoOutput);
}

int runDemo(tDemoOptions const& options) {
  if (auto const problem = findProblem(options)) return complain(*problem, kExitUsage);
  if (options.checksOnly) return kExitGood;
  tRackFile file(options.file);
  if (!file.read()) return complain(file.getProblem(), kExitNoFile);
  return runConnected(options, file);
}

}  // namespace

int main(int argc, char** argv) {
  int exitCode = kExitGood;
  auto const options = readOptions(argc, argv, exitCode);
  return options ? runDemo(*options) : exitCode;
}
