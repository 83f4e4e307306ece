#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <system_error>

#include "oxdiagreport/savedModules.h"
#include "oxdiagreport/tFileMarks.h"

// A folder, with folders in it, of modules as they were built: a PE image has its PDB beside it, an
// ELF file its debugging information in it. A file is that of a module when its name is and when it
// has the module's identity in it, as its PDB must have. For a file without that information, one
// with the same name and the ending .debug is taken.
class tSymbolFolder {
 public:
  // Returns false when the folder cannot be read; `problem` is then one sentence part.
  bool open(std::string const& folder, std::string& problem);

  // The file of the module. Empty when there is none; `problem` then says why.
  std::string find(tSavedModule const& module, std::string& problem);

 private:
  void add(std::filesystem::path const& folder, u32 depth, std::error_code& error);
  bool hasSymbols(std::filesystem::path const& image, tSavedModule const& module,
                  std::string& problem);

  // By name without ending, in small letters, as far as it is saved.
  std::multimap<std::string, std::filesystem::path> files;
  tFileMarks marks;
};
