#pragma once

// The library's own destinations: new ones for each input, watched where their text comes out.

#include "support/tFuzzDestination.h"

// Where a stream writes to.
enum class tPlace { kOwn, kDebugger, kSerial };

// No drive is there, so the file destination never opens. Nothing is connected to the serial port,
// which then looks ready and takes every byte.
class tSinks {
 public:
  explicit tSinks(tArrivals& arrivals);
  ~tSinks();
  tSinks(tSinks const&) = delete;
  tSinks& operator=(tSinks const&) = delete;

  nOXDIAG100::iTraceDestination& debugger() const;
  nOXDIAG100::iTraceDestination& serial() const;

 private:
  static void renew();
  static void keepPrint(void* context, char const* text, size_t length);
  void keepByte(char byte);

  tArrivals& arrivals;
  bool isDivisorAccess = false;
};
