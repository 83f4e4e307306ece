#pragma once

// What programs print of strangers' bytes must not steer the terminal that shows it.

#include <string>

// Stops the program unless every character but the line ends is one that a terminal shows.
void demandNoSteering(std::string const& text);
