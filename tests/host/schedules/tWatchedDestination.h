#pragma once

// A destination that says when it is used as none may be used, for models of schedules. What
// becomes of it is kept elsewhere, as it may be destroyed.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "ntoshost/schedule.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"

struct tWatchedFate {
  bool isOpen = true;  // the first destination of a stream is not opened by it
  bool isGone = false;
  int within = 0;
  std::vector<std::string> pieces;

  // How many pieces end in this text.
  long count(std::string const& text) const {
    return std::count_if(pieces.begin(), pieces.end(), [&](std::string const& piece) {
      return piece.size() >= text.size() &&
             piece.compare(piece.size() - text.size(), text.size(), text) == 0;
    });
  }
};

// A line with the line mutex, when that is on.
inline void writeLine(nOXDIAG100::tTrace& trace, std::string const& text) {
  trace.putPrefix("test", tSSVersion(), 1, "file", 100, nOXDIAG100::tTrace::kTraceLine);
  trace.put(text.c_str()).endl();
}

class tWatchedDestination : public nOXDIAG100::iTraceDestination {
 public:
  explicit tWatchedDestination(tWatchedFate& told) : fate(told) {}
  tWatchedDestination(tWatchedDestination const&) = delete;
  tWatchedDestination& operator=(tWatchedDestination const&) = delete;
  ~tWatchedDestination() override {
    leaveStream();
    EXPECT_EQ(fate.within, 0) << "destroyed while a thread is within put";
    fate.isGone = true;
  }

  iTraceDestination& put(char const* text) override {
    return put(text, static_cast<unsigned int>(__builtin_strlen(text)));
  }
  iTraceDestination& put(char const* text, unsigned int length) override {
    EXPECT_TRUE(fate.isOpen) << "put to a closed destination";
    EXPECT_FALSE(fate.isGone) << "put to a destroyed destination";
    ++fate.within;
    if (onPut != nullptr) onPut();
    fate.pieces.emplace_back(text, length);
    ntoshost::schedulePoint();
    --fate.within;
    return *this;
  }
  void configure(int, char** const) override { requireNobody("configured"); }
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override {
    return inquireText(" --destination watched", buffer, size, needed);
  }
  u32 open() override {
    requireNobody("opened");
    fate.isOpen = true;
    if (onOpen != nullptr) onOpen();
    return mayOpen ? 1 : 0;
  }
  void close() override {
    requireNobody("closed");
    fate.isOpen = false;
  }
  char const* getDescription() const override { return "watched"; }

  std::function<void()> onPut;
  std::function<void()> onOpen;
  bool mayOpen = true;

 private:
  void requireNobody(char const* what) const {
    EXPECT_EQ(fate.within, 0) << what << " while a thread is within put";
  }

  tWatchedFate& fate;
};
