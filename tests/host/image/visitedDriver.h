#pragma once

// What the image of the visited driver has for tests, beside its DriverEntry.

extern "C" {
void workWithin(void (*work)(void* context),
                void* context);  // calls it, and returns into the image
extern char visitedBytes[64];
}
