#pragma once

#include <functional>
#include <string>
#include <unordered_map>

#include "ntos/types.h"

// From where fallible calls are made: those of one test, and all of a program in a file.
class tCallSites {
 public:
  // Appends a line to `file` for each place, once a process: the kind, a tab, and the return
  // addresses, innermost first, as offsets in the program. Empty: no file.
  explicit tCallSites(std::string const& file);
  ~tCallSites();
  tCallSites(tCallSites const&) = delete;
  tCallSites& operator=(tCallSites const&) = delete;

  // From here on calls are numbered from 1, and `note` is called with the numbers of the first
  // `repeats` of each place.
  void beginTest(u32 repeats, std::function<void(u64 number)> note);
  void endTest();

 private:
  static void visit(void* sites, u32 kind);
  void write(u32 kind, void* const* addresses, u32 depth) const;

  int output = -1;
  std::unordered_map<size_t, u32> timesInTest;
  std::unordered_map<size_t, bool> written;
  u32 repeats = 0;
  u64 calls = 0;
  std::function<void(u64 number)> note;
};
