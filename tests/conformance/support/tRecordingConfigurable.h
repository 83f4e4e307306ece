#pragma once

// An object behind a handle that keeps how it was called, for tests on every target.

#include "config/tInstanceRegistry.h"
#include "oxdiagk/tConfigurable.h"

class tRecordingConfigurable : public nOXDIAG100::tConfigurable {
 public:
  static constexpr u32 kCapacity = 255;

  // One word a call: "configure(--checks off) words(2) inquire(8) push pop default ".
  char const* calls() const { return text; }
  void clear() { text[length = 0] = 0; }

  // What inquire writes and says it needs.
  char const* settings = " --recorder on";
  unsigned int needed = 15;

  void configure() override { add("default "); }

  void configure(char const* options) override {
    add("configure(");
    add(options);
    add(") ");
  }

  void configure(int argc, char** argv) override {
    add("words(");
    for (int index = 0; index < argc; ++index) {
      if (index != 0) add("|");
      add(argv[index]);
    }
    add(") ");
  }

  // Keeps to the size, whatever `needed` says.
  void inquire(char* buffer, unsigned int size, unsigned int* required) override {
    add(buffer == nullptr ? "measure " : "inquire ");
    lastSize = size;
    if (required != nullptr) *required = needed;
    if (buffer == nullptr || size == 0) return;
    unsigned int written = 0;
    while (written + 1 < size && settings[written] != 0) {
      buffer[written] = settings[written];
      ++written;
    }
    buffer[written] = 0;
  }
  unsigned int lastSize = 0;

  void pushConfiguration() override { add("push "); }
  void popConfiguration() override { add("pop "); }

 private:
  void add(char const* piece) {
    if (piece == nullptr) piece = "null";
    for (; *piece != 0 && length < kCapacity; ++piece) text[length++] = *piece;
    text[length] = 0;
  }

  char text[kCapacity + 1] = {};
  u32 length = 0;
};

// Such an object with a handle of the module's registry.
class tRegisteredRecorder : public tRecordingConfigurable {
 public:
  tRegisteredRecorder() {
    i32 status = 0;
    handle = nOXDIAG100::tInstanceRegistry::getInstance().acquire(*this, status);
  }
  ~tRegisteredRecorder() override { nOXDIAG100::releaseInstance(handle); }
  tRegisteredRecorder(tRegisteredRecorder const&) = delete;
  tRegisteredRecorder& operator=(tRegisteredRecorder const&) = delete;

  u32 handle = 0;
};
