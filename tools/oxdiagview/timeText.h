#pragma once

#include <cstdint>
#include <string>

namespace oxdiagview {

// A span of time as a person says it: 480 ns, 16.2 µs, 1.05 ms, 2.00 s, 3 min 05 s, 2 h 10 min.
// A negative one has a minus.
std::string spanText(int64_t nanoseconds);

// A time since the beginning in seconds, to the microsecond: 0.016240.
std::string clockText(int64_t nanoseconds);

}  // namespace oxdiagview
