#pragma once

// The modules beneath the library, running for the length of a test. When they stop, nothing of the
// library may be left in them.

#include <string>
#include <vector>

#include "vexk/eventLog.h"

// The classes that the library registers.
extern std::vector<std::string> const kClassNames;

class tPlatform {
 public:
  tPlatform();
  ~tPlatform();
  tPlatform(tPlatform const&) = delete;
  tPlatform& operator=(tPlatform const&) = delete;

  // What the library has left in the modules beneath it, in words; empty when there is nothing.
  static std::string findLeftovers();

  // The events since this one was made.
  std::vector<tVexEvent> getEvents() const;
  std::string getEventTexts() const;  // one line each

 private:
  u64 firstEvent;
};
