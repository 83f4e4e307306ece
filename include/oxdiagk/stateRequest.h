#pragma once

// What a user-mode program asks the library itself, beside the configuration tunnel
// ("oxdiagk/tunnelRequest.h"): which version runs, how many configurations are saved, and how much
// of the trace its files lost.
//
//     tStateAnswer answer = {};
//     tStateRequest const request = {reinterpret_cast<u64>(&answer), sizeof(answer), 0};
//     ... deliver kStateName and the address of `request`, as for the tunnel
//
// Each number of the answer is as it is at one moment, and `size` is written last. Where the
// request cannot be read, or the answer cannot be written to its end, nothing is reported, and
// `size` stays what it was. All numbers are little-endian, all addresses the program's own.

#include "compiler/types.h"

namespace nOXDIAG100 {

// The name among the platform's dispatchers.
constexpr char kStateName[] = "nOXDIAG100://nState";

struct tStateRequest {
  u64 address;   // where the answer goes
  u32 size;      // the most bytes of it that are written; a longer answer is cut
  u32 reserved;  // 0
};

// Later versions may append to it.
struct tStateAnswer {
  static constexpr u32 kBuildSize = 112;

  u32 size;                // bytes of the whole answer
  u32 version;             // the 32 bits of tSSVersion
  u32 savedTrace;          // configurations that popConfiguration of the trace can restore
  u32 savedAssert;         // the same of the assertions
  char build[kBuildSize];  // version, time and place of the build, cut to fit, terminated
  u64 lostFileTexts;       // tFileTraceDestination::countLostTexts; not in answers of 128 bytes
};

static_assert(sizeof(tStateRequest) == 16 && offsetof(tStateRequest, size) == 8);
static_assert(sizeof(tStateAnswer) == 136 && offsetof(tStateAnswer, build) == 16);
static_assert(offsetof(tStateAnswer, lostFileTexts) == 128);

}  // namespace nOXDIAG100
