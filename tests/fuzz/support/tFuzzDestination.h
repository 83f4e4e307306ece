#pragma once

// Destinations whose text a fuzz target sees, in the order in which it arrives anywhere.

#include <string>
#include <vector>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "support/fuzzing.h"

// One call of put to the destination `place`.
struct tArrival {
  nOXDIAG100::iTraceDestination const* place;
  std::string text;
};
using tArrivals = std::vector<tArrival>;

// A destination that no option names. Its next opens can be made to fail.
class tFuzzDestination : public nOXDIAG100::iTraceDestination {
 public:
  explicit tFuzzDestination(tArrivals& arrivals) : arrivals(arrivals) {}

  bool isOpen = false;
  unsigned failingOpens = 0;
  unsigned configureCalls = 0;

  iTraceDestination& put(char const* text) override {
    arrivals.push_back({this, text});
    return *this;
  }

  iTraceDestination& put(char const* text, unsigned int length) override {
    arrivals.push_back({this, std::string(text, length)});
    return *this;
  }

  void configure(int /*argc*/, char** const /*argv*/) override { ++configureCalls; }

  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText(" --destination fuzz", buffer, size, required);
  }

  u32 open() override {
    demand(!isOpen, "a destination is closed before it is opened", [] { return "an open one"; });
    bool const opens = failingOpens == 0;
    if (!opens) --failingOpens;
    isOpen = opens;
    return opens ? 1 : 0;
  }

  void close() override { isOpen = false; }

  char const* getDescription() const override { return "fuzz"; }

 private:
  tArrivals& arrivals;
};

// A stream of the target's own.
class tFuzzTrace : public nOXDIAG100::tTrace {
 public:
  explicit tFuzzTrace(nOXDIAG100::iTraceDestination& destination) : tTrace(destination) {}
};
