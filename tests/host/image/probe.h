#pragma once

// Functions that the image has for tests besides the exports of the module.

extern "C" {
int probeOutcome();  // judgeLoadedLibrary of "package/loadOutcome.h"
bool probeIsGone();  // isLibraryGone
}
