#pragma once

#include <string>
#include <vector>

// What differs between Linux and Windows.

// The words of the command line behind the program's name, in UTF-8; of a main() that got these.
std::vector<std::string> commandWords(int argc, char** argv);

// A descriptor to read bytes of a file by, below 0 and errno set if there is none. The name is in
// UTF-8. Standard input is the program's own, and is not closed.
int openForReading(std::string const& name);
int openStandardInput();

// Call first: the descriptors of the standard streams are nobody else's, standard output takes
// bytes as they are, and a terminal takes them for UTF-8.
void prepareStandardStreams();

// What stands for the kernel beneath the library in this program.
std::string getExecutiveName();
