#pragma once

#include "ntos/types.h"

namespace nOXDIAG100 {

class iTraceDestination;

// The settings of a destination that is about to be closed, as the words that configure it again.
// Everything is had before it is closed, so that giving the words back cannot fail. Settings of
// usual length lie in the object itself and need no memory.
class tFormerSettings {
 public:
  explicit tFormerSettings(iTraceDestination& destination);
  ~tFormerSettings();
  tFormerSettings(tFormerSettings const&) = delete;
  tFormerSettings& operator=(tFormerSettings const&) = delete;

  // True when the settings are long and memory is exhausted: then there are no words.
  bool hasFailed() const { return count < 0; }

  // Configures the destination with the words, if there are any.
  void restore(iTraceDestination& destination);

 private:
  static constexpr u32 kTextSize = 384;  // bytes; the file's settings have 276 at most
  static constexpr int kWordCapacity = 16;

  bool read(iTraceDestination& destination, char* buffer, u32 size, char** room, int capacity);
  void readLong(iTraceDestination& destination, u32 size);

  void* longPlace = nullptr;  // the words, and the text behind them
  char** words = shortWords;
  int count = -1;
  char* shortWords[kWordCapacity];
  char shortText[kTextSize];
};

}  // namespace nOXDIAG100
