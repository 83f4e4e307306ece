#pragma once

// A user of a trace stream who does everything that a stream can, in a random order that is the
// same on every machine.

#include <string>
#include <vector>

#include "tHashedPieces.h"
#include "tRepeatableRandom.h"

namespace nOXDIAG100 {
class tTraceFilter;
}  // namespace nOXDIAG100

class tRandomUser {
 public:
  using tAction = void (tRandomUser::*)();

  // `dumped` is memory of kDumpedSize bytes at the same address in every run.
  tRandomUser(nOXDIAG100::tTrace& trace, tHashedPieces& pieces, u8 const* dumped, u64 seed)
      : trace(trace), pieces(pieces), dumped(dumped), random(seed) {}

  static constexpr u32 kDumpedSize = 4096;

  // Brings the stream to the settings of a fresh one, does `steps` of `actions`, ends what is open.
  void run(std::vector<tAction> const& actions, u32 steps);

  // Lines.
  void openLine();
  void endLine();

  // What a line is filled with.
  void putText();
  void putCharacter();
  void putNumber();
  void putAddress();
  void putObject();
  void putFormatted();
  void putDump();

  // Whole lines.
  void traceByMacro();
  void traceBlock();

  // How lines look, and whether they are shown.
  void changeSwitch();
  void changeWidth();
  void changeFilter();
  void changeMaster();
  void changeMutex();
  void configure();

 private:
  void reset();
  void closeAll();
  std::string makeText();
  std::string makeFilter();
  std::string makeTerm();
  std::string makeConversion(std::vector<u64>& arguments);
  std::string makeStars(std::vector<u64>& arguments);
  void addTerm(nOXDIAG100::tTraceFilter& filter);
  char const* name();
  char const* file();
  u32 verbosity();
  u32 radix();
  void putCountedText();
  void putWideText();

  nOXDIAG100::tTrace& trace;
  tHashedPieces& pieces;
  u8 const* const dumped;
  tRepeatableRandom random;
  u32 openLines = 0;
  u32 openBlocks = 0;
};
