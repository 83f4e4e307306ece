// What a test wants to know of the image from within.

#include "probe.h"
#include "package/loadOutcome.h"

extern "C" int probeOutcome() {
  return judgeLoadedLibrary();
}

extern "C" bool probeIsGone() {
  return isLibraryGone();
}
