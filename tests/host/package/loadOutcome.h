#pragma once

// What a load with one failed call came to.

enum tLoadOutcome : int {
  kWhole,            // nothing failed
  kWithoutRegistry,  // loaded; there are no handles
  kWithoutCategory,  // loaded; contracts of one category are not checked
  kWithoutFilter,    // loaded; every line is shown
  kWithEmptyFilter,  // loaded; the filter has lost its default term
  kWithEmptyHeap,    // loaded; statuses have no detail
  kRefused,          // not loaded, and nothing is left
  kWrong,
  kOutcomeCount
};

// Loads what the library stands on.
void startPlatform();

// Of a library that is loaded: what it lacks.
tLoadOutcome judgeLoadedLibrary();

// Whether the library, not loaded or unloaded again, shows a trace of its objects.
bool isLibraryGone();
