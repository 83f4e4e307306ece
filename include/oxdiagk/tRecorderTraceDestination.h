#pragma once

#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/tRecorderRing.h"

namespace nOXDIAG100 {

// The flight recorder: keeps the newest text in a fixed ring of non-paged memory, at the cost of a
// copy. "--destination recorder 64" keeps 64 KiB; "--destination recorder 64 vex" hands each text
// to the debugger print as well.
//
// The ring is there from the first open() until the recorder is destroyed, also while the streams
// write elsewhere: what it holds is what a crash dump shows. When the system stops, the recorder
// puts the beginnings of lines that its streams have not ended behind the rest, and gives the ring
// to the dump, as data of its own with the GUID kDumpGuid; a dump of the whole memory has it
// anyway. "oxdiagk/tRecorderRing.h" says how it is found there.
//
// Thread safety: any number of threads may put at once, and each text stands in the ring in one
// piece. A text that is being copied while the ring comes round to it, 64 KiB of other text later,
// is mixed with that. The other operations as of every destination.
// IRQL: put at any, if nothing is handed on, or to what takes it there. The others PASSIVE_LEVEL.
class OXDIAG_API tRecorderTraceDestination : public iTraceDestination {
 public:
  static constexpr u32 kLeastKiB = 1;
  static constexpr u32 kMostKiB = 16384;
  static constexpr u32 kKiBAtStart = 64;

  // {1D6F7A0B-52C4-4E0E-9A37-6C1B8A5D2F90}
  static constexpr u8 kDumpGuid[16] = {0x0B, 0x7A, 0x6F, 0x1D, 0xC4, 0x52, 0x0E, 0x4E,
                                       0x9A, 0x37, 0x6C, 0x1B, 0x8A, 0x5D, 0x2F, 0x90};

  // The one instance that options name, made by the first call; see tFileTraceDestination. Null
  // when memory is exhausted.
  static tRecorderTraceDestination* getInstance();

  // Destroys that instance: for the tables of the module's entry, and nobody else.
  static void destroyInstance();

  // Without memory for text; hands nothing on.
  tRecorderTraceDestination() = default;

  // Leaves the trace streams that write here; gives the ring back.
  ~tRecorderTraceDestination() override;

  tRecorderTraceDestination(tRecorderTraceDestination const&) = delete;
  tRecorderTraceDestination& operator=(tRecorderTraceDestination const&) = delete;

  // Keeps `text` up to its terminator. Null counts as no text.
  iTraceDestination& put(char const* text) override;

  // Keeps exactly `length` bytes; of more than the ring takes, the last ones. Null is no text.
  // Before the first open() nothing is kept.
  iTraceDestination& put(char const* text, unsigned int length) override;

  // Takes what the next open() does: a number, the KiB of text to keep, from 1 to 16384 (a number
  // outside counts as the nearest), and "vex", to hand texts on to the debugger print. Without a
  // number the size stays, without "vex" nothing is handed on.
  void configure(int argc, char** const argv) override;

  // " --destination recorder 64", with " vex" behind it when texts are handed on.
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  // Takes the memory, unless it is there in this size. What was recorded stays, as far as it fits.
  // Returns 1, or 0 without memory; then everything stays as it is.
  u32 open() override;

  // Only ends the handing on: the text stays for a dump.
  void close() override;

  // "Flight recorder with 64 KiB". Valid until the next call for this object.
  char const* getDescription() const override;

  // The ring, for whoever saves it elsewhere; null before the first open(). It is written on
  // meanwhile, unless nobody traces.
  tRecorderRing const* getRing() const { return loadRing(); }

 private:
  class tCrashRecord;

  tRecorderRing* loadRing() const;
  void keep(tRecorderRing& to, char const* text, u64 length);
  void keepUnfinishedLines();
  bool takeRing(u64 size);

  tRecorderRing* ring = nullptr;
  tCrashRecord* crashRecord = nullptr;  // from the first open()
  u32 kiB = kKiBAtStart;
  u32 pendingKiB = kKiBAtStart;
  bool handsOn = false;
  bool pendingHandsOn = false;
  bool isCrashed = false;
  mutable char description[48] = {};
};

}  // namespace nOXDIAG100
