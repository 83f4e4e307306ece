#pragma once

#include <string>

// Makes a file of these bytes, in place of one that may be there. Returns false when it could not
// be written; `problem` is then a sentence for the user.
bool writeFile(std::string const& name, void const* bytes, size_t size, std::string& problem);
