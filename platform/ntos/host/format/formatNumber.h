#pragma once

#include "format/conversion.h"
#include "format/textSink.h"

namespace ntoshost {

// Writes the next argument as d, i, u, o, x, X or p asks. False for any other letter; nothing is
// taken then.
template <class Character>
bool formatNumber(TextSink<Character>& sink, Conversion const& conversion,
                  FormatArguments& arguments);

}  // namespace ntoshost
