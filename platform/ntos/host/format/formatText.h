#pragma once

#include "format/conversion.h"
#include "format/textSink.h"

namespace ntoshost {

// Writes the next argument as c, C, s, S or Z asks. False for any other letter; nothing is taken
// then. Stops the program when UTF-16 text is asked for above PASSIVE_LEVEL: the kernel's tables
// for it are paged.
template <class Character>
bool formatText(TextSink<Character>& sink, Conversion const& conversion,
                FormatArguments& arguments);

}  // namespace ntoshost
