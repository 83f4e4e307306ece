#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/savedModules.h"
#include "oxdiagreport/tSymbolFolder.h"
#include "oxdiagreport/tSymbolizer.h"

// One frame of a call stack.
struct tFrame {
  u64 address;                       // a return address
  std::string module;                // empty when it is not known
  u64 offset;                        // of the address from the base of the module
  std::vector<tSourcePlace> places;  // of the call, innermost first; empty without symbols
  std::string problem;               // why there are no symbols, when they were asked for
};

// Makes frames of statuses: with modules, and with symbols when it was given a folder of them.
class tCallStackReader {
 public:
  // Asks for symbols. Returns false when the folder cannot be read; `problem` is then one sentence
  // part. A symbolizer that cannot be started is a `problem` too, but frames can be had.
  bool useSymbols(std::string const& folder, std::string& problem);

  // The frames, innermost first; none behind the last one with an address.
  std::vector<tFrame> framesOf(nOXDIAG100::tStatus2 const& status,
                               std::vector<tSavedModule> const& modules);

  bool hasSymbols() const { return isAsked; }

 private:
  struct tFile {
    std::string name;
    std::string problem;
  };

  tFrame frameAt(u64 address, std::vector<tSavedModule> const& modules);
  void addPlaces(tSavedModule const& module, tFrame& frame);
  tFile const& fileOf(tSavedModule const& module);

  bool isAsked = false;
  tSymbolFolder folder;
  tSymbolizer symbolizer;
  std::map<std::tuple<std::string, u8, std::string>, tFile> files;  // by name and identity
};
