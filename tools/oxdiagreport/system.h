#pragma once

#include <string>

// What differs between Linux and Windows.

// A descriptor for standard input, which takes bytes as they are; below 0 if there is none.
int openStandardInput();

// Call first: the descriptors of the standard streams are nobody else's, standard output takes
// bytes as they are, and a terminal takes them for UTF-8.
void prepareStandardStreams();

// What stands for the kernel beneath the library in this program.
std::string getExecutiveName();
