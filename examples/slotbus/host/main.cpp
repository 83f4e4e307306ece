// The program around the component on the development host.

#include <cstdio>

#include "ntoshost/executive.h"
#include "slotbus/component/component.h"
#include "slotbus/component/slotbus.h"
#include "slotbus/host/demoOptions.h"
#include "slotbus/host/filterCheck.h"
#include "slotbus/host/tModules.h"
#include "slotbus/host/tRackFile.h"

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

int runRack(tDemoOptions const& options, tRackFile const& file) {
  tModules const modules;
  if (!modules.areRunning()) return complain("the library cannot be started", kExitNoModule);
  tTrace& trace = tTrace::getInstance();
  if (options.filter) applyFilter(*options.filter, trace);
  OXDIAG_TRACE(kTraceProgress, put("the rack is ").put(file.getName().c_str()));
  return readRackText(file.getText().data(), file.getText().size(), trace) == 0 ? kExitGood
                                                                                : kExitBadRack;
}

int runDemo(tDemoOptions const& options) {
  if (options.filter) {
    if (auto const problem = findFilterProblem(*options.filter)) {
      return complain("in the filter, " + *problem, kExitUsage);
    }
  }
  tRackFile file(options.file);
  if (!file.read()) return complain(file.getProblem(), kExitNoFile);
  ntoshost::setDebugPrintSink(printToStandardOutput, nullptr);
  int const result = runRack(options, file);
  ntoshost::requireNoOutstanding("slotbus_demo");
  bool const isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  return isWritten ? result : complain("cannot write to standard output", kExitNoOutput);
}

}  // namespace

int main(int argc, char** argv) {
  int exitCode = kExitGood;
  auto const options = readOptions(argc, argv, exitCode);
  return options ? runDemo(*options) : exitCode;
}
