#pragma once

// A private stream with three destinations of its own and those of the library, all watched.

#include "support/fuzzing.h"
#include "support/tSinks.h"

class tWatchedStream {
 public:
  static constexpr unsigned kOwnDestinations = 3;
  static constexpr unsigned kDestinations = kOwnDestinations + 2;  // and debugger, serial port

  tWatchedStream() { first.isOpen = true; }

  // Puts text and demands that just this arrives, in pieces that end at newlines and at 255
  // characters; nothing when the line is not shown.
  void put(std::string const& text);

  // The same for text that write(trace) puts.
  template <class Write>
  void demandPut(std::string const& text, Write write) {
    if (!isPendingKnown) probe();
    bool const isShown = trace.isLineShown();
    arrivals.clear();
    write(trace);
    demandArrived(isShown ? take(text) : "");
  }

  // Demands that a line put now arrives at the current destination, when lines are shown.
  void probe();

  // To be called when something else wrote, and so some of the text may still be in the buffer.
  void loseTrack() { isPendingKnown = false; }

  // Where the stream is now; demands that it is a known place.
  tPlace place();

  // Demands that the current destination is open, and no other.
  void demandDestinations();

  // Moves the stream to the destination of that number, with the next opens of it and of the
  // current one failing (the library's two do not), and demands what should come of it. Returns
  // whether it moved. When `isOutOfMemory` the serial port may fail to open.
  bool move(unsigned number, unsigned failingOpens, unsigned failingReopens, bool isOutOfMemory);

  tSinks const& getSinks() const { return sinks; }

 private:
  nOXDIAG100::iTraceDestination& destinationAt(unsigned number);
  tFuzzDestination* findOwn(nOXDIAG100::iTraceDestination const* destination);
  void demandArrived(std::string const& text);
  std::string take(std::string const& text);
  std::string asItArrives(std::string const& piece);

  tArrivals arrivals;
  tSinks sinks{arrivals};
  tFuzzDestination first{arrivals};
  tFuzzDestination second{arrivals};
  tFuzzDestination third{arrivals};
  tFuzzDestination* const own[kOwnDestinations] = {&first, &second, &third};
  std::string pending;  // what is in the line buffer
  bool isPendingKnown = true;

 public:
  tFuzzTrace trace{first};  // goes before its destinations
};
