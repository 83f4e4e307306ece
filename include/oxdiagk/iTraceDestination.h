#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// Where trace text goes. A trace stream hands finished text to one destination at a time, asks it
// for its description and settings, and closes and opens it when the destination is switched. The
// streams of a module may share a destination: the first that takes it opens it, the last that
// leaves it closes it.
//
// A component may bring its own destination: derive, implement every operation, and install the
// object with tTrace::setDestination. The object must outlive its use; a destination that can be
// destroyed while it is installed begins its destructor with leaveStream().
//
// `configure`, `open` and `close` have bodies that do nothing (`open` returns 1), for destinations
// that need no more:
//
//     void close() override { iTraceDestination::close(); }
//
// Slot order is part of the interface on Windows: destructor, put(text, length), put(text),
// configure, inquire, open, close, getDescription. (The compiler lays out a run of overloads in the
// reverse order of declaration, hence the order below.)
//
// Thread safety and IRQL: `put` is serialised only as far as the stream serialises its lines
// ("--mutex on"). Without that, text of several threads may arrive interleaved and at once, at
// whatever IRQL they run; no destination may corrupt its own state over it. The text does not
// change while it is being put. The other operations come from the streams one at a time, at
// PASSIVE_LEVEL: `configure`, `open` and `close` while no other thread is within `put`, whatever
// stream it came from, `inquire` and `getDescription` perhaps while some are. Whoever calls them on
// a destination of a stream directly brings that order along.
//
// Below DISPATCH_LEVEL `put` runs in a critical region, so that nobody suspends its thread while
// others wait for it; it returns at the IRQL, and in the region, that it was called in.
//
// Tracing from within: `put` may write lines into its own stream. They arrive after the text that
// is being put, by a put within that put, four deep at most; what would go deeper is dropped. `put`
// cannot switch its own destination: that changes nothing. `open` and `close` may switch the stream
// to another destination, four switches deep at most; a destination that is opened then, and is not
// the one where the stream stays, is closed again. `put` may also destroy its own object, whose
// destructor begins with leaveStream(), if it touches nothing of it any more: the streams go to the
// debugger, and what is left of the text follows them.
//
// A `put` that does not return holds up a switch for ten seconds, which is then given up. The other
// operations are waited for without limit: while one of them does not return, no stream is
// configured or inquired and the module does not end, and locked lines wait. Lines without the line
// mutex go on, and are lost during an `open` and a `close`.
class OXDIAG_API iTraceDestination {
 public:
  VEX_MODULE_MEMORY

  // Releases what the destination still holds, as close() does.
  virtual ~iTraceDestination() = 0;

  // Writes `text` up to its terminator. `text` must not be null. Returns this destination.
  virtual iTraceDestination& put(char const* text) = 0;

  // Writes the first `length` characters of `text`. Whether an embedded NUL ends the text is the
  // destination's own rule. Returns this destination.
  virtual iTraceDestination& put(char const* text, unsigned int length) = 0;

  // Takes the destination's own option words: those behind "--destination" and its name. Unknown
  // words are ignored. The words belong to the caller and are not kept.
  virtual void configure(int argc, char** const argv) = 0;

  // Writes the settings as option text, preceded by a blank, such as " --destination vex".
  //
  // With a buffer and a size (in bytes) the text is copied with its terminator, never past the
  // buffer, and buffer[size - 1] becomes a terminator in any case. `needed`, unless null, gets
  // the length of the whole text plus one. Returns where copying stopped: the place of the
  // terminator, `buffer + size` when the text was cut, or a null buffer as it is.
  virtual char* inquire(char* buffer, unsigned int size, unsigned int* needed) = 0;

  // Prepares for output. Returns 1 on success and 0 on failure; after a failure nothing is held.
  // May be called when it is open already, by switches within each other.
  virtual u32 open() = 0;

  // Releases what open() acquired. May be called when nothing is open.
  virtual void close() = 0;

  // A short text for people, such as "VEX print to debugger". Valid until the next call.
  virtual char const* getDescription() const = 0;

 protected:
  // inquire() for a destination whose whole settings are the one text `settings`.
  static char* inquireText(char const* settings, char* buffer, unsigned int size,
                           unsigned int* needed);

  // Sends every trace stream of the module whose destination this is back to the debugger, with
  // "--destination vex". The destination still receives their lines about it, is asked for its
  // settings and is closed. When the function returns, no other thread is within the destination
  // and none enters it again, so threads may go on writing lines while a destination is destroyed;
  // but nobody may be installing it.
  //
  // A thread that does not come out of put within ten seconds is named in the event log, and the
  // streams leave all the same; this function alone waits on, without limit, before the destination
  // is closed.
  //
  // For the beginning of the destructor of the class that implements those operations.
  // PASSIVE_LEVEL, and not within a line while the line mutex is on.
  void leaveStream();
};

}  // namespace nOXDIAG100
