#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// An object whose behaviour is set by option words, as on a command line: the trace stream and the
// assertion configuration. Whoever configures such an object needs no more than this class.
//
// An option is a word that begins with "--", such as "--timestamp"; what may follow it, and what it
// means, is the derived class's own. Words are compared exactly, upper and lower case apart, and a
// word that nobody knows is ignored.
//
// Slot order is part of the interface on Windows: destructor, configure(argc, argv),
// configure(options), configure(), inquire, pushConfiguration, popConfiguration. (The compiler lays
// out a run of overloads in the reverse order of declaration, hence the order below.)
//
// Thread safety: that of the derived class. Of tTrace and tAssertConfiguration, operations called
// on several threads wait for each other, one at a time; what belongs together, such as a push and
// its pop, is the callers' to order. IRQL: PASSIVE_LEVEL, unless a derived class allows more.
class OXDIAG_API tConfigurable {
 public:
  VEX_MODULE_MEMORY

  virtual ~tConfigurable() = 0;

  // Applies the configuration from the object's own source, if it has one.
  virtual void configure() = 0;

  // Splits `options` into words and hands them to configure(argc, argv), exactly once, with argc 0
  // when there are no words. `options` must not be null and is not changed.
  //
  // Words are separated by blanks and the control characters tab to carriage return. A word that
  // begins with a double quote runs to the next double quote, or to the end when there is none; the
  // quotes are not part of it and blanks inside are kept, so `""` is an empty word. What follows
  // the closing quote begins a new word. A double quote inside an unquoted word is an ordinary
  // character. There is no escape character.
  //
  // One scratch allocation holds the words during the call. When memory is exhausted
  // configure(argc, argv) is still called, with a null argv.
  //
  //     trace.configure("--timestamp on --filter \"verbosity>=200 && comp==slotbus\"");
  virtual void configure(char const* options);

  // Reads `argc` words. There is no program name to skip: argv[0] is the first word. A null `argv`
  // counts as no words, and a null word ends the list. The words belong to the caller and are not
  // kept beyond the call.
  virtual void configure(int argc, char** argv) = 0;

  // Writes the settings as an option string that configure(options) accepts.
  // `size` is the size of `buffer` in bytes: a text that does not fit is cut, and the last byte of
  // the buffer is always a terminator. `buffer` may be null and `size` 0. The size needed, that is
  // the length of the whole text plus one, is stored through `needed` unless that is null.
  virtual void inquire(char* buffer, unsigned int size, unsigned int* needed) = 0;

  // Saves the settings on the object's own stack, which is as deep as memory allows. When memory
  // is exhausted nothing is saved.
  virtual void pushConfiguration() = 0;

  // Restores the settings saved last and forgets them. Does nothing when none are saved. When
  // memory is exhausted they are forgotten all the same, and nothing else changes.
  virtual void popConfiguration() = 0;
};

}  // namespace nOXDIAG100
