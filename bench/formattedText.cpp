// What formatted text costs: putf, into the line and to a destination that does nothing, and the C
// library's snprintf into a buffer. The other peers are in formattedTextPeers.cpp.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include "replies.h"
#include "tBenchStream.h"

using nOXDIAG100::iTraceDestination;

namespace {

constexpr size_t kTextSize = nOXDIAG100::tTrace::kMaxTraceLine;

// Keeps the last piece of text.
class tLastPiece : public tNullDestination {
 public:
  iTraceDestination& put(char const* piece) override {
    return put(piece, static_cast<unsigned int>(std::strlen(piece)));
  }
  iTraceDestination& put(char const* piece, unsigned int length) override {
    std::snprintf(text, sizeof(text), "%.*s", static_cast<int>(length), piece);
    return *this;
  }

  char text[kTextSize] = "";
};

void putReply(nOXDIAG100::tTrace& trace, tReply const& reply) {
  trace.putf(kReplyFormat, reply.slot, reply.device, reply.duration, reply.control);
}

void putNumbers(nOXDIAG100::tTrace& trace, tReply const& reply) {
  trace.putf(kNumbersFormat, reply.slot, reply.duration, reply.control, reply.control);
}

void printReply(char* text, tReply const& reply) {
  std::snprintf(text, kTextSize, kReplyFormat, reply.slot, reply.device, reply.duration,
                reply.control);
}

void printNumbers(char* text, tReply const& reply) {
  std::snprintf(text, kTextSize, kNumbersFormat, reply.slot, reply.duration, reply.control,
                reply.control);
}

template <class tPut>
void runOurs(benchmark::State& state, tPut put, char const* knownText) {
  tLastPiece piece;
  tBenchStream checked(piece);
  put(checked, kKnownReply);
  if (std::strcmp(piece.text, knownText) != 0) return state.SkipWithError("another text");

  tNullDestination destination;
  tBenchStream trace(destination);
  tReplies replies;
  for ([[maybe_unused]] auto run : state) {
    put(trace, replies.next());
    benchmark::ClobberMemory();
  }
  if (destination.getPieces() != static_cast<u64>(state.iterations())) {
    state.SkipWithError("lines went astray");
  }
}

template <class tPrint>
void runPrintf(benchmark::State& state, tPrint print, char const* knownText) {
  char text[kTextSize];
  print(text, kKnownReply);
  if (std::strcmp(text, knownText) != 0) return state.SkipWithError("another text");

  tReplies replies;
  for ([[maybe_unused]] auto run : state) {
    print(text, replies.next());
    benchmark::DoNotOptimize(text);
    benchmark::ClobberMemory();
  }
}

BENCHMARK_CAPTURE(runOurs, reply, putReply, kKnownReplyText)->Name("formatted line/ours");
BENCHMARK_CAPTURE(runPrintf, reply, printReply, kKnownReplyText)->Name("formatted line/snprintf");
BENCHMARK_CAPTURE(runOurs, numbers, putNumbers, kKnownNumbersText)->Name("formatted numbers/ours");
BENCHMARK_CAPTURE(runPrintf, numbers, printNumbers, kKnownNumbersText)
    ->Name("formatted numbers/snprintf");

}  // namespace
