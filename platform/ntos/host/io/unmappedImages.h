#pragma once

#include "io/image.h"

namespace ntoshost {

// From now on a fault within an image that is remembered stops the program with a sentence. Other
// faults go to whom they went before.
void watchUnmappedImages();

// The image's place is empty. The last 1,024 are remembered; older places may be used again.
void rememberUnmappedImage(MappedImage const& image);

}  // namespace ntoshost
