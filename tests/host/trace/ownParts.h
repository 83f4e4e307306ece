#pragma once

// The parts of a stream by themselves, and what comes between them and their destination, in one
// thread.

#include <functional>

#include "keptLines.h"
#include "oxdiagk/tTraceParts.h"
#include "tSeemingThread.h"
#include "trace/tLiveStreams.h"
#include "trace/tStreamLock.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/sync.h"

constexpr u32 kAnotherThread = 0xFFFFFFF1;

// One of the streams, as a tTrace has it. The lock is not closed, as it may be one of the test.
class tOwnParts : public nOXDIAG100::tTraceParts {
 public:
  explicit tOwnParts(nOXDIAG100::iTraceDestination& first) : tTraceParts(first) {
    nOXDIAG100::tLiveStreams::add(*this);
  }
  ~tOwnParts() {
    nOXDIAG100::tLiveStreams::remove(*this);
    delete filter;
  }
  tOwnParts(tOwnParts const&) = delete;
  tOwnParts& operator=(tOwnParts const&) = delete;

  void send(char const* text) { slot.send(text, static_cast<u32>(__builtin_strlen(text))); }

  // As another thread does.
  void sendElsewhere(char const* text) {
    tSeemingThread const other(kAnotherThread);
    send(text);
  }
};

// Does what a test says when it is used.
class tCallingKept : public tKeptLines {
 public:
  using tKeptLines::leaveStream;
  using tKeptLines::put;

  std::function<void(std::string const&)> onPut;
  std::function<void()> onConfigure;
  std::function<void()> onOpen;
  std::function<void()> onClose;

  bool has(std::string const& wanted) const { return text().find(wanted) != std::string::npos; }

  nOXDIAG100::iTraceDestination& put(char const* text, unsigned int length) override {
    tKeptLines::put(text, length);
    if (onPut) onPut(std::string(text, length));
    return *this;
  }
  void configure(int argc, char** const argv) override {
    tKeptLines::configure(argc, argv);
    if (onConfigure) onConfigure();
  }
  u32 open() override {
    if (onOpen) onOpen();
    return tKeptLines::open();
  }
  void close() override {
    tKeptLines::close();
    if (onClose) onClose();
  }
};

// A text of another thread, on its way through a slot, until the object goes.
class tTextOfAnother {
 public:
  tTextOfAnother(nOXDIAG100::tDestinationSlot const& slot,
                 nOXDIAG100::iTraceDestination const& destination, u32 thread = kAnotherThread)
      : place(nOXDIAG100::tTextsOnTheWay::enter(thread, slot)) {
    nOXDIAG100::tTextsOnTheWay::direct(place, destination);
  }
  ~tTextOfAnother() { nOXDIAG100::tTextsOnTheWay::leave(place); }
  tTextOfAnother(tTextOfAnother const&) = delete;
  tTextOfAnother& operator=(tTextOfAnother const&) = delete;

 private:
  u32 const place;
};

// A lock of lines that answers as a test says.
class tToldLock final : public iSync {
 public:
  i32 acquire(u32 /*timeoutMilliseconds*/) override {
    ++acquired;
    if (onAcquire) onAcquire();
    return status;
  }
  i32 release() override {
    ++released;
    return 0;
  }

  std::function<void()> onAcquire;
  i32 status = 0;
  int acquired = 0;
  int released = 0;
};
