#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace oxdiagview {

// Ticks of the processor's counter in a second as somebody writes them: 2400000000, 2.4GHz,
// 2400MHz. Nothing for another text, 0 included.
std::optional<uint64_t> readTickRate(std::string_view text);

// Of this computer, measured against the system's clock.
uint64_t measureTickRate();

}  // namespace oxdiagview
