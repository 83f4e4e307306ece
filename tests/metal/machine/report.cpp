#include "machine/report.h"

#include "machine/ports.h"
#include "vexk/number.h"

namespace {

constexpr u16 kDebugPort = 0xE9;
constexpr u16 kExitPort = 0xF4;
constexpr u32 kDecimal = 10;

constinit bool isHeld = true;

void write(char const* text) {
  for (; *text != 0; ++text) writePort(kDebugPort, static_cast<u8>(*text));
}

}  // namespace

void say(char const* line) {
  write(line);
  write("\n");
}

void sayNumber(char const* name, u64 number) {
  char text[kNumberTextSize];
  vexNumberToText(number, kDecimal, text);
  write(name);
  write(" ");
  say(text);
}

void expect(bool held, char const* statement) {
  if (held) return;
  isHeld = false;
  write("FAILED ");
  say(statement);
}

bool allHeld() {
  return isHeld;
}

void endRun(tEnd end) {
  writePort(kExitPort, end);
  for (;;) __asm__ volatile("hlt");
}

// An instruction of the image failed.
extern "C" [[noreturn]] void processorFault() {
  say("FAILED a fault of the processor");
  endRun(kEndFault);
}
