#pragma once

// Every public operation of the objects that the library has one of.

// Calls all of them, whatever state the library is in.
void callEveryOperation();

// Whether the library answers like one that is not there: no switch is on, no handle is given, an
// inquiry is an empty text.
bool isLibraryAtRest();

// Whether it works: lines reach a destination, settings are taken, saved and given back, statuses
// have their detail.
bool isLibraryWorking();
