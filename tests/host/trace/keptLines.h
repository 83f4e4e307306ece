#pragma once

// A destination without limits for host tests, and a stream of the test's own.

#include <string>
#include <vector>

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

class tKeptLines : public nOXDIAG100::iTraceDestination {
 public:
  std::vector<std::string> pieces;  // one for each call of put
  std::vector<std::string> words;   // of the last configure
  std::string settings = " --destination kept";
  std::string events;
  int failingOpens = 0;

  std::string text() const {
    std::string all;
    for (std::string const& piece : pieces) all += piece;
    return all;
  }

  iTraceDestination& put(char const* text) override {
    pieces.emplace_back(text);
    return *this;
  }

  iTraceDestination& put(char const* text, unsigned int length) override {
    pieces.emplace_back(text, length);
    return *this;
  }

  void configure(int argc, char** const argv) override {
    words.assign(argv, argv + argc);
    events += "configure ";
  }

  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText(settings.c_str(), buffer, size, required);
  }

  u32 open() override {
    bool const opens = failingOpens == 0;
    if (!opens) --failingOpens;
    events += opens ? "open " : "open-fails ";
    return opens ? 1 : 0;
  }

  void close() override { events += "close "; }

  char const* getDescription() const override { return "kept lines"; }
};

class tOwnTrace : public nOXDIAG100::tTrace {
 public:
  explicit tOwnTrace(nOXDIAG100::iTraceDestination& destination) : tTrace(destination) {}
  using tTrace::getCarriedDelta;
  using tTrace::getClock;
};

// The whole inquired text.
inline std::string inquiredText(nOXDIAG100::tTrace& trace) {
  unsigned int needed = 0;
  trace.inquire(nullptr, 0, &needed);
  std::string text(needed, '#');
  trace.inquire(text.data(), needed, nullptr);
  text.pop_back();
  return text;
}

// Without the calibration, which differs from run to run.
inline std::string settingsOf(nOXDIAG100::tTrace& trace) {
  std::string const text = inquiredText(trace);
  return text.substr(0, text.find(" --calibrate"));
}
