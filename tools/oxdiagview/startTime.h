#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace oxdiagview {

// A time of day in UTC as 2026-11-22T20:15:00Z, with a part of a second or without, in nanoseconds
// since 1970. Nothing for another text, and for years from 2500 on.
std::optional<uint64_t> readStartTime(std::string_view text);

}  // namespace oxdiagview
