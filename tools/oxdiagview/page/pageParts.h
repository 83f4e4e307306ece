#pragma once

#include <string_view>
#include <vector>

namespace oxdiagview {

// The page of a trace as the build put it together, in pieces; the trace is between the two.
std::vector<std::string_view> const& getPageBeforeTrace();
std::vector<std::string_view> const& getPageBehindTrace();

}  // namespace oxdiagview
