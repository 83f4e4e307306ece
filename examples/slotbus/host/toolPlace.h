#pragma once

#include <string>

// The tool of the same build, so that a line with it can be copied; only its name where it is
// elsewhere.
std::string findTool(std::string const& name);
