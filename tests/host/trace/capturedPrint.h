#pragma once

// The debugger print of all threads, kept while an object of this class lives.

#include <string>
#include <vector>

#include "ntoshost/debugPrint.h"

class tCapturedPrint {
 public:
  tCapturedPrint() { ntoshost::setDebugPrintSink(&keep, this); }
  ~tCapturedPrint() { ntoshost::setDebugPrintSink(nullptr, nullptr); }
  tCapturedPrint(tCapturedPrint const&) = delete;
  tCapturedPrint& operator=(tCapturedPrint const&) = delete;

  std::vector<std::string> prints;  // one for each call of the debugger

  std::string text() const {
    std::string all;
    for (std::string const& print : prints) all += print;
    return all;
  }

 private:
  static void keep(void* context, char const* text, size_t length) {
    static_cast<tCapturedPrint*>(context)->prints.emplace_back(text, length);
  }
};
