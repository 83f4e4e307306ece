#pragma once

namespace oxdiagview {

// What differs between the systems, in a folder for each.

// Makes standard input and standard output take bytes as they are, and no file take the place of
// one that is closed.
void prepareStandardStreams();

// Makes standard output obey colors, if it is a terminal. Whether it is one that does.
bool prepareColors();

}  // namespace oxdiagview
