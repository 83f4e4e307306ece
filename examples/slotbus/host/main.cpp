// The program around the component on the development host.

#include <cstdio>

#include "ntoshost/executive.h"
#include "ntoshost/files.h"
#include "options/filterCheck.h"
#include "options/tOptionCheck.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/component/tCaptureBuffer.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/tModules.h"
#include "slotbus/host/tOptionWordList.h"
#include "slotbus/host/tRackFile.h"
#include "slotbus/host/tSerialPort.h"
#include "slotbus/host/writeFile.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tCTFTraceDestination;
using nOXDIAG100::tTrace;
using namespace nSLOTBUS100;

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

int readRack(tRackFile const& file, tTrace& trace, tStatusRecord* record) {
  OXDIAG_TRACE(kTraceProgress, put("the rack is ").put(file.getName().c_str()));
  u32 const result = readRackText(file.getText().data(), file.getText().size(), trace, record);
  return result == 0 ? kExitGood : kExitBadRack;
}

int readRackCaptured(tRackFile const& file, tTrace& trace, tStatusRecord* record) {
  tCaptureBuffer buffer;
  if (!buffer.allocate()) return readRack(file, trace, record);
  int result = kExitGood;
  {
    tCTFTraceDestination capture(buffer.getText(), buffer.getPosition(), buffer.kSize, nullptr);
    trace.setDestination(capture);
    result = readRack(file, trace, record);
  }
  buffer.show();
  return result;
}

int readRack(tDemoOptions const& options, tRackFile const& file, tTrace& trace,
             tStatusRecord* record) {
  return options.captures ? readRackCaptured(file, trace, record) : readRack(file, trace, record);
}

// Reads the rack, and writes what it has recorded.
int readRackAndSave(tDemoOptions const& options, tRackFile const& file, tTrace& trace) {
  if (!options.save) return readRack(options, file, trace, nullptr);
  tStatusRecord record;
  if (!record.allocate()) return complain("there is no memory for the statuses", kExitNoOutput);
  int const result = readRack(options, file, trace, &record);
  std::string problem;
  bool const isSaved = writeFile(*options.save, record.getBytes(), record.getLength(), problem);
  return isSaved ? result : complain(problem, kExitNoOutput);
}

int runRack(tDemoOptions const& options, tRackFile const& file) {
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration::getInstance().configure(options.assertions.c_str());
  trace.configure(options.trace.c_str());
  if (options.filter) applyFilter(*options.filter, trace);
  return readRackAndSave(options, file, trace);
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
  tSerialPort serialPort;
  if (auto const problem = connectDevices(options, serialPort)) {
    return complain(*problem, kExitNoOutput);
  }
  ntoshost::setDebugPrintSink(printToStandardOutput, nullptr);
  int const result = runRack(options, file);
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
