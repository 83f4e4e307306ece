#pragma once

#include "ntos/types.h"
#include "oxdiagk/api.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// Where trace text goes. The trace stream hands finished text to one destination at a time, asks it
// for its description and settings, and closes and opens it when the destination is switched.
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
// change while it is being put. The other operations come from the stream one at a time, at
// PASSIVE_LEVEL: `open` and `close` while no other thread is within `put`, `configure`, `inquire`
// and `getDescription` perhaps while some are. Whoever calls them on a destination of a stream
// directly brings that order along. `put` must not switch the stream's destination.
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
  // buffer, and buffer[size - 1] becomes a terminator in any case. `required`, unless null, gets
  // the length of the whole text plus one. Returns where copying stopped: the place of the
  // terminator, `buffer + size` when the text was cut, or a null buffer as it is.
  virtual char* inquire(char* buffer, unsigned int size, unsigned int* required) = 0;

  // Prepares for output. Returns 1 on success and 0 on failure; after a failure nothing is held.
  virtual u32 open() = 0;

  // Releases what open() acquired. May be called when nothing is open.
  virtual void close() = 0;

  // A short text for people, such as "VEX print to debugger". Valid until the next call.
  virtual char const* getDescription() const = 0;

 protected:
  // inquire() for a destination whose whole settings are the one text `settings`.
  static char* inquireText(char const* settings, char* buffer, unsigned int size,
                           unsigned int* required);

  // Sends the module's trace stream back to the debugger, with "--destination vex", if this is its
  // destination, which still receives the line about it, is asked for its settings and is closed.
  // When it returns, no thread is within the destination and none enters it again, so threads may
  // go on writing lines while a destination is destroyed; but nobody may be installing it.
  // For the beginning of the destructor of the class that implements those operations.
  // PASSIVE_LEVEL, and not within a line while the line mutex is on.
  void leaveStream();
};

}  // namespace nOXDIAG100
