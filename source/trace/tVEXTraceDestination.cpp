#include "oxdiagk/tVEXTraceDestination.h"

#include "config/tObjectRoom.h"
#include "oxdiagk/atomicWord.h"
#include "vexk/debug.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {
namespace {

// A global of this class would have its virtual destructor registered for the end of the program,
// and would be gone before its last user. The object is nothing but its class, so whoever asks
// first builds it; two who ask first at once store the same.
constinit tObjectRoom<tVEXTraceDestination> instance;
constinit bool instanceIsBuilt = false;

}  // namespace

tVEXTraceDestination& tVEXTraceDestination::getInstance() {
  if (!loadAcquire(instanceIsBuilt)) {
    new (instance.take()) tVEXTraceDestination;
    storeRelease(instanceIsBuilt, true);
  }
  return instance.get();
}

iTraceDestination& tVEXTraceDestination::put(char const* text) {
  ssprintf("%s", text);
  return *this;
}

iTraceDestination& tVEXTraceDestination::put(char const* text, unsigned int length) {
  if (length != 0) ssprintf("%.*s", static_cast<int>(length), text);
  return *this;
}

void tVEXTraceDestination::configure(int argc, char** const argv) {
  iTraceDestination::configure(argc, argv);
}

char* tVEXTraceDestination::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  return inquireText(" --destination vex", buffer, size, needed);
}

u32 tVEXTraceDestination::open() {
  return iTraceDestination::open();
}

void tVEXTraceDestination::close() {
  iTraceDestination::close();
}

char const* tVEXTraceDestination::getDescription() const {
  return "VEX print to debugger";
}

}  // namespace nOXDIAG100
