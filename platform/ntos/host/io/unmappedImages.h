#pragma once

#include "io/image.h"

namespace ntoshost {

// The image's place is empty, and a fault there stops the program with a sentence from now on, see
// "faultHandler.h". The last 1,024 are remembered; older places may be used again.
void rememberUnmappedImage(MappedImage const& image);

}  // namespace ntoshost
