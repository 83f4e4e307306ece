#pragma once

#include "oxdiagk/tTraceParts.h"

namespace nOXDIAG100 {

class tStreamHold;

// Reads one list of option words into a trace stream. The filter, the mutex token and the options
// of a destination take effect as they are read, everything else after the last word.
class tTraceOptionReader {
 public:
  tTraceOptionReader(tTraceParts& stream, int argc, char** argv);

  void read();

 private:
  enum tPending : u8 { kUnchanged, kOff, kOn };

  bool isAtEnd() const { return next == end; }
  bool hasValue() const;
  char const* takeWord();
  char const* takeValue();

  void readOption(char const* word);
  bool readSwitch(char const* name);
  void readSwitchValue(tLineShape::tSwitch which, i32 field);
  void readWidth();
  void readFilter();
  void readDestination();
  void readTokens();
  void holdLines(tStreamHold& hold);

  void apply();
  void turn(tLineShape::tSwitch which, tPending pending);

  tTraceParts& stream;
  tTraceFilter* const filter;
  char** next;
  char** const end;

  tPending master = kUnchanged;
  tPending switches[tLineShape::kSwitchCount] = {};
  bool hasWidth = false;
  bool calibrates = false;
  u32 width = 0;
  iTraceDestination* destination = nullptr;
  bool destinationIsChanged = false;  // by words of this list
};

}  // namespace nOXDIAG100
