#pragma once

#include "format/conversion.h"
#include "format/textSink.h"

namespace ntoshost {

// The kernel's printf. Stops the program at a conversion that the kernel does not have. `call`
// names the kernel call.
template <class Character>
void formatInto(TextSink<Character>& sink, Character const* format, FormatArguments& arguments,
                char const* call);

}  // namespace ntoshost
