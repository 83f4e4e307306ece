#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

// Names of files as people type them, for every program. They are in UTF-8 on Windows too, where a
// program that takes them as they come has only the characters of one code page.

// The words of the command line behind the program's name; of a main() that got these.
std::vector<std::string> commandWords(int argc, char** argv);

// A descriptor to read bytes of a file by, below 0 and errno set if there is none.
int openForReading(std::string const& name);

// A stream of bytes into a file that is made or emptied; null if that cannot be done.
std::FILE* openForWriting(std::string const& name);

// What the system tells of a file, as stat(). False if there is none.
bool lookAtFile(std::string const& name, struct stat& about);
