// The program around the component on the development host.

#include <cstdio>
#include <optional>

#include "ntoshost/executive.h"
#include "ntoshost/files.h"
#include "options/filterCheck.h"
#include "options/tOptionCheck.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "slotbus/host/crash.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/serve.h"
#include "slotbus/host/tColoredPrint.h"
#include "slotbus/host/tEndWatch.h"
#include "slotbus/host/tModules.h"
#include "slotbus/host/tOptionWordList.h"
#include "slotbus/host/tProgramRack.h"
#include "slotbus/host/tRackFile.h"
#include "slotbus/host/tRackMachine.h"
#include "slotbus/host/tSerialPort.h"
#include "slotbus/host/traceFile.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tTrace;

namespace {

// How long somebody is waited for who reads the serial port, in milliseconds; who serves ends when
// Ctrl-C says so.
constexpr unsigned int kReaderPatience = 3000;
constexpr unsigned int kReaderPatienceOfServer = 200;

int complain(std::string const& sentence, int exitCode) {
  std::fflush(stdout);  // what stands there comes first
  std::fprintf(stderr, "slotbus_demo: %s.\n", sentence.c_str());
  return exitCode;
}

// The trace is what the demo is about, so it goes where a program's result goes.
void printToStandardOutput(void*, char const* text, size_t length) {
  std::fwrite(text, 1, length, stdout);
}

void printInColors(void* print, char const* text, size_t length) {
  static_cast<tColoredPrint*>(print)->put({text, length});
}

bool isColored(tColorChoice choice) {
  return choice == tColorChoice::kAuto ? wantsColors() : choice == tColorChoice::kAlways;
}

// The trace goes to standard output, with or without colors.
void connectOutput(tDemoOptions const& options, std::optional<tColoredPrint>& colors) {
  if (isColored(options.color)) colors.emplace(stdout);
  ntoshost::setDebugPrintSink(colors ? printInColors : printToStandardOutput,
                              colors ? &*colors : nullptr);
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
int plugIn(tDemoOptions const& options, tRackFile const& file, tTrace& trace, tServing* serving) {
  tProgramRack rack(options, file, trace);
  tRackMachine machine(rack);
  if (!machine.isRunning()) return complain("the driver cannot be started", kExitNoModule);
  if (rack.getResult() == kExitNoOutput) return complain(rack.getProblem(), kExitNoOutput);
  if (options.crashes) crashInLine(machine, trace);
  if (serving == nullptr) return rack.getResult();
  auto const problem = serve(machine, *serving, options.socket);
  return problem ? complain(*problem, kExitNoOutput) : kExitGood;
}

// What a machine on a customer's desk would have on all day. The lines are seen here as well.
void recordFlight(tDemoOptions const& options, tTrace& trace) {
  bool const isChosen = tOptionWordList(options.trace).hasPair("--destination", "recorder");
  if (!isChosen) trace.configure("--destination recorder 64 vex");
}

int runRack(tDemoOptions const& options, tRackFile const& file, tServing* serving) {
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration::getInstance().configure(options.assertions.c_str());
  trace.configure(options.trace.c_str());
  if (options.crashes) recordFlight(options, trace);
  if (options.filter) applyFilter(*options.filter, trace);
  return plugIn(options, file, trace, serving);
}

// Who serves may be sent to any destination at any time.
std::optional<std::string> connectDrive(tDemoOptions const& options, tOptionWordList const& words) {
  std::string const folder = options.driveC.value_or(".");
  bool const needsDrive =
      options.driveC || options.serves || words.hasPair("--destination", "file");
  if (!needsDrive || ntoshost::mountDrive('C', folder.c_str())) return std::nullopt;
  return "cannot use the folder '" + folder + "' as drive C:";
}

std::optional<std::string> connectPort(tDemoOptions const& options, tOptionWordList const& words,
                                       tSerialPort& port, tEndWatch* watch) {
  bool const isAskedFor = options.serial || words.hasPair("--destination", "serial");
  if (!isAskedFor && !options.serves) return std::nullopt;
  bool const isConnected = port.connect(options.serial);
  if (!isConnected && isAskedFor) return port.getProblem();
  if (!isConnected) complain(port.getProblem() + "; what is sent there is lost", kExitNoOutput);
  if (isConnected && isAskedFor) {
    port.announce();
    port.waitForWatcher(watch);
  }
  return std::nullopt;
}

// Connects what the trace is sent to besides standard output.
std::optional<std::string> connectDevices(tDemoOptions const& options, tSerialPort& serialPort,
                                          tEndWatch* watch) {
  tOptionWordList const words(options.trace);
  if (auto problem = connectDrive(options, words)) return problem;
  return connectPort(options, words, serialPort, watch);
}

void suggestNext() {
  std::printf(
      "Next: ./dev demo examples/slotbus/faulty.txt    a rack with seven mistakes, explained\n");
}

// What became of what was written, or `result` when all of it has arrived.
int checkOutput(tDemoOptions const& options, tSerialPort& serialPort, int result) {
  bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (!isWritten) return complain("cannot write to standard output", kExitNoOutput);
  if (auto const problem = findTraceFileProblem()) return complain(*problem, kExitNoOutput);
  unsigned int const patience = options.serves ? kReaderPatienceOfServer : kReaderPatience;
  return serialPort.finish(patience) ? result : complain(serialPort.getProblem(), kExitNoOutput);
}

int runConnected(tDemoOptions const& options, tRackFile const& file) {
  std::optional<tEndWatch> watch;
  if (options.serves) watch.emplace();
  tSerialPort serialPort;
  std::optional<tServing> serving;
  if (options.serves) serving.emplace(tServing{*watch, serialPort});
  if (auto const problem = connectDevices(options, serialPort, watch ? &*watch : nullptr)) {
    return complain(*problem, kExitNoOutput);
  }
  std::optional<tColoredPrint> colors;
  connectOutput(options, colors);
  if (options.crashes) {
    return runUntilCrash([&] { return runRack(options, file, nullptr); }, options.dump);
  }
  int const result = runRack(options, file, serving ? &*serving : nullptr);
  ntoshost::requireNoDevices("slotbus_demo");
  ntoshost::requireNoOutstanding("slotbus_demo");
  ntoshost::requireNoHandles("slotbus_demo");
  ntoshost::setDebugPrintSink(printToStandardOutput, nullptr);
  colors.reset();
  if (options.isFirstTry && result == kExitGood) suggestNext();
  return checkOutput(options, serialPort, result);
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
