#include "cases/cases.h"
#include "machine/commandLine.h"
#include "machine/interrupts.h"
#include "machine/report.h"

namespace {

bool isEqual(char const* left, char const* right) {
  return __builtin_strcmp(left, right) == 0;
}

tCase const* findCase(char const* name) {
  for (tCase const& each : kCases) {
    if (isEqual(each.name, name)) return &each;
  }
  return nullptr;
}

}  // namespace

// What the boot code calls: runs the case that the command line names, and ends the emulator.
extern "C" [[noreturn]] void metalMain(tStartInfo const* startInfo) {
  catchFaults();
  expect(startInfo->magic == kStartInfoMagic, "the loader hands over its start information");
  if (!allHeld()) endRun(kEndFailed);
  tWords line(startInfo->commandLine);
  tCase const* const found = line.count == 0 ? nullptr : findCase(line.words[0]);
  if (found == nullptr) endRun(kEndUnknownCase);
  found->run(line.count - 1, line.words + 1);
  say("done");
  endRun(allHeld() ? kEndHeld : kEndFailed);
}
