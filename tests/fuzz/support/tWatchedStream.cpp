#include "support/tWatchedStream.h"

namespace {

using nOXDIAG100::iTraceDestination;

constexpr size_t kLongestPiece = 255;

// Whether a destination opens; takes one of its failures.
bool willOpen(tFuzzDestination const* destination, unsigned& failures) {
  if (destination == nullptr || failures == 0) return true;
  --failures;
  return false;
}

}  // namespace

void tWatchedStream::put(std::string const& text) {
  demandPut(text, [&](nOXDIAG100::tTrace& stream) {
    stream.put(text.data(), static_cast<unsigned int>(text.size()));
  });
}

// The pieces that leave the buffer, as one text.
std::string tWatchedStream::take(std::string const& text) {
  std::string taken;
  for (char const character : text) {
    pending += character;
    if (character != '\n' && pending.size() != kLongestPiece) continue;
    taken += asItArrives(pending);
    pending.clear();
  }
  return taken;
}

// The debugger prints no more than up to a NUL; on the serial line a return follows a line feed.
std::string tWatchedStream::asItArrives(std::string const& piece) {
  if (place() == tPlace::kDebugger) return piece.c_str();
  bool const isSent = place() == tPlace::kSerial && piece.ends_with('\n');
  return isSent ? piece + '\r' : piece;
}

void tWatchedStream::demandArrived(std::string const& text) {
  std::string seen;
  for (tArrival const& arrival : arrivals) {
    demand(arrival.place == trace.getDestination(), "text arrives at the current destination",
           [&] { return readable(arrival.text); });
    demand(arrival.text.size() <= kLongestPiece || place() == tPlace::kSerial,
           "pieces fit the buffer", [&] { return readable(arrival.text); });
    seen += arrival.text;
  }
  demandEqual(seen, text, "what is put arrives");
}

// The first newline sends off what was in the buffer.
void tWatchedStream::probe() {
  bool const isShown = trace.isLineShown();
  arrivals.clear();
  trace.put("\n~\n");
  bool const hasArrived = !arrivals.empty() && arrivals.back().text.ends_with(asItArrives("~\n")) &&
                          arrivals.back().place == trace.getDestination();
  demand(isShown ? hasArrived : arrivals.empty(), "the stream writes when it shows lines",
         [&] { return isShown ? "nothing" : "a line"; });
  if (!isShown) return;
  pending.clear();
  isPendingKnown = true;
}

iTraceDestination& tWatchedStream::destinationAt(unsigned number) {
  if (number < kOwnDestinations) return *own[number];
  return number == kOwnDestinations ? sinks.debugger() : sinks.serial();
}

tFuzzDestination* tWatchedStream::findOwn(iTraceDestination const* destination) {
  for (tFuzzDestination* candidate : own) {
    if (candidate == destination) return candidate;
  }
  return nullptr;
}

tPlace tWatchedStream::place() {
  iTraceDestination const* const current = trace.getDestination();
  if (current == &sinks.debugger()) return tPlace::kDebugger;
  if (current == &sinks.serial()) return tPlace::kSerial;
  demand(findOwn(current) != nullptr, "the destination is a known one", [] { return "another"; });
  return tPlace::kOwn;
}

void tWatchedStream::demandDestinations() {
  tFuzzDestination const* const current = findOwn(trace.getDestination());
  for (tFuzzDestination const* candidate : own) {
    demand(candidate->isOpen == (candidate == current),
           "the current destination is open, and no other",
           [&] { return candidate->isOpen ? "one too many" : "a closed one"; });
  }
}

bool tWatchedStream::move(unsigned number, unsigned failingOpens, unsigned failingReopens,
                          bool isOutOfMemory) {
  iTraceDestination& next = destinationAt(number);
  iTraceDestination* const former = trace.getDestination();
  tFuzzDestination* const ownNext = findOwn(&next);
  tFuzzDestination* const ownFormer = findOwn(former);
  if (ownFormer != nullptr) ownFormer->failingOpens = failingReopens;
  if (ownNext != nullptr) ownNext->failingOpens = failingOpens;
  unsigned failuresOfNext = failingOpens;
  unsigned failuresOfFormer = failingReopens;
  bool const isMoved = willOpen(ownNext, failuresOfNext);
  bool const isRestored =
      isMoved || willOpen(ownFormer, ownFormer == ownNext ? failuresOfNext : failuresOfFormer);
  bool const mayFail = isOutOfMemory && (former == &sinks.serial() || &next == &sinks.serial());
  unsigned const configured = ownFormer == nullptr ? 0 : ownFormer->configureCalls;
  iTraceDestination* const result = trace.setDestination(next);
  for (tFuzzDestination* candidate : own) candidate->failingOpens = 0;
  if (mayFail) return isMoved;
  iTraceDestination* const wanted = isMoved ? &next : (isRestored ? former : &sinks.debugger());
  demand(trace.getDestination() == wanted, "the stream moves, stays or falls back",
         [&] { return std::to_string(number); });
  demand(result == (isRestored ? former : &sinks.debugger()),
         "moving returns the former destination", [&] { return std::to_string(number); });
  if (ownFormer == nullptr || isOutOfMemory) return isMoved;
  demand(ownFormer->configureCalls == configured + (isMoved ? 0 : 1),
         "the former destination gets its settings when it comes back",
         [&] { return std::to_string(ownFormer->configureCalls - configured) + " times"; });
  return isMoved;
}
