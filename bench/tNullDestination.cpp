#include "tNullDestination.h"

using nOXDIAG100::iTraceDestination;

tNullDestination::~tNullDestination() = default;

iTraceDestination& tNullDestination::put(char const*) {
  ++pieces;
  return *this;
}

iTraceDestination& tNullDestination::put(char const*, unsigned int) {
  ++pieces;
  return *this;
}

void tNullDestination::configure(int, char** const) {
}

char* tNullDestination::inquire(char* buffer, unsigned int size, unsigned int* required) {
  return inquireText("", buffer, size, required);
}

u32 tNullDestination::open() {
  return 1;
}

void tNullDestination::close() {
}

char const* tNullDestination::getDescription() const {
  return "nothing";
}
