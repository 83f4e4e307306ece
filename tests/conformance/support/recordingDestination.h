#pragma once

// A trace destination that keeps what happens to it, for tests on every target: fixed storage, no
// constructor at load, and objects small enough for a kernel stack.

#include "conformance/harness.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"

// The destination that a stream has from the beginning.
inline nOXDIAG100::iTraceDestination* debuggerPrint() {
  return &nOXDIAG100::tVEXTraceDestination::getInstance();
}

// What a recording destination keeps. What finds no room is dropped.
struct tRecordedText {
  static constexpr u32 kTextCapacity = 8192;
  static constexpr u32 kPieceCapacity = 64;
  static constexpr u32 kEventCapacity = 512;

  char text[kTextCapacity + 1];  // all text, without gaps
  u32 length;
  u32 pieceEnds[kPieceCapacity];
  u32 pieceCount;                   // calls of put
  char events[kEventCapacity + 1];  // one word a call: "inquire close open put configure(a|b) "
  u32 eventLength;
};

inline constinit tRecordedText recordStorage[4] = {};

class tRecordingDestination : public nOXDIAG100::iTraceDestination {
 public:
  // Two objects alive at once need different slots.
  explicit tRecordingDestination(u32 slot = 0) : record(recordStorage[slot]) { clear(); }

  // All text received, as one text; an embedded NUL ends it early.
  char const* text() const { return record.text; }
  u32 length() const { return record.length; }

  // How often put was called, and the text of the call with this index.
  u32 pieceCount() const { return record.pieceCount; }
  u32 pieceLength(u32 index) const { return record.pieceEnds[index] - pieceBegin(index); }
  bool pieceIs(u32 index, char const* wanted) const {
    if (index >= record.pieceCount || __builtin_strlen(wanted) != pieceLength(index)) return false;
    return __builtin_memcmp(record.text + pieceBegin(index), wanted, pieceLength(index)) == 0;
  }

  char const* events() const { return record.events; }

  void clear() {
    record.length = record.pieceCount = record.eventLength = 0;
    record.text[0] = record.events[0] = 0;
  }

  // What inquire answers, what getDescription answers, and how many times open() fails from now on.
  char const* settings = " --destination recording";
  char const* description = "recorder";
  u32 failingOpens = 0;
  bool isOpen = true;

  iTraceDestination& put(char const* text) override {
    addEvent("put-terminated ");
    return keep(text, static_cast<u32>(__builtin_strlen(text)));
  }

  iTraceDestination& put(char const* text, unsigned int length) override {
    addEvent("put ");
    return keep(text, length);
  }

  void configure(int argc, char** const argv) override {
    addEvent("configure(");
    for (int index = 0; index < argc; ++index) {
      if (index != 0) addEvent("|");
      addEvent(argv[index]);
    }
    addEvent(") ");
  }

  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    if (buffer == nullptr) addEvent("measure ");
    if (buffer != nullptr) addEvent("inquire ");
    return inquireText(settings, buffer, size, required);
  }

  u32 open() override {
    if (failingOpens != 0) {
      --failingOpens;
      addEvent("open-fails ");
      return 0;
    }
    addEvent("open ");
    isOpen = true;
    return 1;
  }

  void close() override {
    addEvent("close ");
    isOpen = false;
  }

  char const* getDescription() const override { return description; }

 private:
  iTraceDestination& keep(char const* text, u32 length) {
    if (record.pieceCount == tRecordedText::kPieceCapacity ||
        record.length + length > tRecordedText::kTextCapacity) {
      return *this;
    }
    __builtin_memcpy(record.text + record.length, text, length);
    record.length += length;
    record.text[record.length] = 0;
    record.pieceEnds[record.pieceCount++] = record.length;
    return *this;
  }

  u32 pieceBegin(u32 index) const { return index == 0 ? 0 : record.pieceEnds[index - 1]; }

  void addEvent(char const* event) {
    u32 const length = static_cast<u32>(__builtin_strlen(event));
    if (record.eventLength + length > tRecordedText::kEventCapacity) return;
    __builtin_memcpy(record.events + record.eventLength, event, length + 1);
    record.eventLength += length;
  }

  tRecordedText& record;
};

// A stream of the test's own.
class tPrivateTrace : public nOXDIAG100::tTrace {
 public:
  explicit tPrivateTrace(nOXDIAG100::iTraceDestination& destination) : tTrace(destination) {}
  using tTrace::getCarriedDelta;
  using tTrace::getClock;
};

// The fixture of tests that look at what a stream of their own writes.
class tRecordedStream : public oxt::tFixture {
 protected:
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};
};
