#pragma once

// What a configurable object says of itself.

#include <string>

#include "oxdiagk/tConfigurable.h"

// The whole inquired text, read into a block of exactly its size.
std::string inquiredText(nOXDIAG100::tConfigurable& object);

// Without the calibration of a trace stream, which differs from one measurement to the next.
std::string settingsText(nOXDIAG100::tConfigurable& object);

// Inquires into a buffer of `size` bytes, and into none, and demands what must come of it.
void demandCutInquiry(nOXDIAG100::tConfigurable& object, unsigned size);
