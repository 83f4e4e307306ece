#pragma once

#include "oxdiagk/tConfigurable.h"
#include "oxdiagk/tLineLimit.h"
#include "oxdiagk/tTraceParts.h"
#include "oxdiagk/tTraceSite.h"
#include "stl/string.h"
#include "vexk/compileTime.h"
#include "vexk/tMemBlockReferenceTemplate.h"
#include "vexk/tSSVersion.h"

#define OXDIAG_TRACE_SWITCH(Name, name, place, atStart, word, field) \
  void enable##Name() {                                              \
    parts.turn(tLineShape::k##Name, true);                           \
  }                                                                  \
  void disable##Name() {                                             \
    parts.turn(tLineShape::k##Name, false);                          \
  }                                                                  \
  u32 name##IsEnabled() const {                                      \
    return parts.getShape().isOn(tLineShape::k##Name) ? 1 : 0;       \
  }

namespace nOXDIAG100 {

class iTraceable;
class iTraceDestination;
class tInquiryText;
class tStatus2;

// The processor's time stamp counter, in ticks; the clock of every line time. Any IRQL.
OXDIAG_API u64 readTimeStampCounter();

// The trace stream: every component writes its diagnostic lines into one object of this class.
//
// A line is opened by putPrefix, filled by the put family and ended by endl, which hands it to the
// current destination:
//
//     tTrace& trace = tTrace::getInstance();
//     trace.putPrefix("slotbus", version, __LINE__, __FILE__, 100, tTrace::kTraceLine)
//         .put("slot ").put(slot, 10).put(" answered ").put(reply, length, 4).endl();
//
// Text collects in a buffer of 255 characters. It goes to the destination at each newline and when
// the buffer is full, so a longer line arrives in pieces, unmarked, only the first with the prefix.
// While the stream is disabled, or the filter rejected the line, text is dropped. Nothing is ever
// reported to the writer.
//
// A line within a line: a thread may open a line before it has ended another one, as when an
// argument of a line traces. The inner line then follows what the outer one has put, and ends it;
// what the outer one puts behind it is a line without a prefix. Each endl ends the innermost line
// and brings back the verdict about the one around it, so what a hidden line puts stays hidden. A
// stream remembers the verdicts of one thread: without the line mutex, lines that other threads
// open meanwhile may bring the rest of a hidden outer line to light.
//
// Time deltas: a line's delta is the number of ticks from the end of the line before it, whoever
// wrote that, to the beginning of this one, less what calibrate measured. The lines that were not
// shown since the last shown one add theirs, so what lies between lines is counted, shown or not,
// and what a hidden line itself takes, from its putPrefix to its endl, is not. Nothing is added up
// while the delta is switched off. Before a first line has ended, the counter's value is the delta.
// A line that begins before the one before it has ended has a negative delta, which is shown as the
// wrapped 64-bit number: a line that waits for the line mutex, lines of threads that do not lock
// them.
//
// Thread safety: all threads share the stream. Any of them may call any operation at any time,
// with the exceptions that are listed below as left to the callers.
//
// Lines: with "--mutex on" a line belongs to its thread from putPrefix to endl, which must then
// both be called at IRQL <= APC_LEVEL; lines of different threads do not mix. Without it they may,
// within a line, but nothing is written beyond the buffer. A put without prefix takes no lock. The
// switches are single words, stored and read as a whole; there is no order among several.
//
// Configuration: configure, inquire, pushConfiguration, popConfiguration, setDestination,
// calibrate, enableMutex and disableMutex wait for each other, one call at a time, whatever stream
// they are called for. What belongs together, such as a push and its pop, is the callers' to order.
// A line that is opened meanwhile is judged and shown by what is set at that moment, which may be a
// part of it.
//
// Switches of the destination beside lines: with "--mutex on" a switch is like one long line of its
// thread, from its announcement to its last message. Lines of other threads wait for it and are
// neither lost nor cut. Without the mutex, and for a put without prefix, lines do not wait; what
// other threads write during the switch is lost.
//
// Waiting has an end: a switch waits for threads within the destination's put, and for the line of
// another thread, for ten seconds in all, as does a list of options. Then it is given up: the
// former destination stays as it is, and the event log names the thread; it names nobody when the
// line lock went from one thread to another meanwhile. The seconds pass by the performance counter,
// and by the kernel's timer should the counter stand still or run backwards. While a thread does
// not come out of the put of its own switch, the other operations of the configuration are given up
// in the same way: they change nothing, and inquire gives an empty text. enableMutex and
// disableMutex wait for the line lock without limit, unless the line's thread does not come out of
// a put for ten seconds: then they are given up as well, and the switch of the mutex stays as it
// is. With "--mutex on" a put that never returns keeps its line, for which all other lines wait.
//
// A put that traces: a destination may write lines into a stream from its own put. They are handed
// over after the text that is being put, and each put of them may trace in turn, up to four puts of
// one thread within each other; text for a fifth is dropped. Texts of 256 threads at most are on
// the way at once; a text beyond them is dropped.
//
// What is left to the callers: the stream is built before and destroyed after everybody's use of
// it. The filter is changed through getFilter() by one thread, while nobody configures or inquires.
// With "--mutex on", a thread within a line may configure only while no other thread does: the
// other one waits for the line while it is waited for. A switch is given up after ten seconds then,
// but enableMutex and disableMutex never are.
//
// IRQL: writing allocates nothing. Every put, putf and endl may hand text to the destination, so
// they work at the IRQLs at which its put does (the file: any, but from APC_LEVEL on it drops the
// text and counts it); with the line mutex on, lines need IRQL <= APC_LEVEL. The plain switches,
// enable, disable and all queries work at any IRQL; enableMutex, disableMutex and calibrate at IRQL
// <= APC_LEVEL; everything else that configures, inquire, and building and destroying a stream, at
// PASSIVE_LEVEL. A stream lies in non-paged memory.
class OXDIAG_API tTrace : public tConfigurable {
 public:
  // The kind of line that a prefix opens.
  enum tTraceType {
    kTraceLine = 0,   // a plain line
    kBlockEntry = 1,  // the first line of a block: the lines after it are nested one deeper
    kBlockExit = 2    // the last line of a block: nested one less, itself included
  };

  // The one stream of the module. Every name, and none, means this stream.
  static tTrace& getInstance(char* name = nullptr);

  // Build and destroy that stream: for the tables of the module's entry, and nobody else. Before
  // and after, every operation may be called and does nothing: text is dropped, no switch changes,
  // there is neither a destination nor a filter (both null), and inquire gives an empty text.
  static void constructInstance();
  static void destroyInstance();

  // Closes the mutex, frees the filter, and restores every saved configuration, down to the first,
  // with its switch of the destination, but without its calibration and its switch of the mutex.
  ~tTrace() override;

  tTrace(tTrace const&) = delete;
  tTrace& operator=(tTrace const&) = delete;

  // The master switch; on at the start.
  void enable();
  void disable();
  u32 isEnabled() const;

  // Whether text put now is written: the stream is enabled and the filter passed the current line.
  // Lets an author skip work for a line that nobody sees; the line still needs its endl.
  bool isLineShown() const { return parts.isWriting(); }

  // The switches of the prefix, and its shape. Each stands for three operations, as in
  // enableTimeStamp(), disableTimeStamp(), timeStampIsEnabled(); a query returns 1 or 0.
  //
  //   ComponentName     on   the component's name
  //   ComponentVersion  off  its version
  //   LineNumber        on   the source line
  //   FileName          on   the source file
  //   FilePath          off  the file with its path
  //   ThreadId          off  the current thread
  //   TimeStamp         off  counter ticks at the prefix
  //   TimeDelta         off  ticks since the line before
  //   Verbosity         off  the level of the line
  //   Indenting         on   two blanks a nesting level
  //   Truncation        on   cut fields to the prefix width
  OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_SWITCH, OXDIAG_TRACE_SWITCH, OXDIAG_TRACE_NO_SWITCH);

  // The line mutex; off at the start. The first enableMutex opens the platform's lock
  // "nOXDIAG100::tTrace::_mutex", which is kept until the stream is destroyed; when it cannot be
  // opened the switch is on all the same, nothing is locked, and the next enableMutex tries again.
  // Both wait, without limit but for a put that does not return (above), until no other thread
  // holds that lock: that is, for the line of another thread that was opened while the mutex was
  // on, in this stream or another. A line that was opened while the mutex was off holds nothing and
  // is not waited for; it may still mix with the first lines behind enableMutex. IRQL <= APC_LEVEL.
  void enableMutex();
  void disableMutex();
  u32 mutexIsEnabled() const;

  // The width of a prefix, less one character: its fields are padded to width - 1 characters, and
  // cut to as many while truncation is on, and the closing "] " follows. So the prefix of the width
  // at the start, 50, has 51 characters. A width of 0 with truncation leaves the indentation alone.
  // Any value.
  void setMinPrefixWidth(u32 width);
  u32 getMinPrefixWidth() const;

  // How many blocks are open: block entries less block exits, never below 0.
  i32 getNestingLevel() const;

  iTraceDestination* getDestination();

  // Moves the stream to `next`: announces it by a line on the former destination, asks that one
  // for its settings, closes it and opens `next`. When that fails the former destination is
  // configured as it was and opened again; when that fails too, the debugger print takes over. Both
  // are reported by lines of the stream. The lines are written while the stream is enabled, also
  // within a line that is hidden.
  //
  // A destination may be used by several streams: the first that takes it opens it, the last that
  // leaves it closes it. Taken by a stream that has it already, it is closed and opened again for
  // all of them; so it is when an option brings new settings for it. If it cannot be opened then,
  // neither with its former settings, all of them go to the debugger print.
  //
  // Switches within each other, by destinations that switch while they are opened or closed, leave
  // open what a stream is at in the end, and nothing else, unless four closes in a row switch once
  // more. In which order destinations are opened and closed on the way is not promised, nor that
  // one is closed before it is opened again; what is written from within a close may be lost.
  //
  // Returns the destination that was current before the call, or the debugger-print destination
  // when the stream fell back to it. The call changes nothing, and returns the current destination,
  //   - when it is given up after ten seconds, as said above;
  //   - from within the put of either destination;
  //   - as the fifth switch within each other, of destinations that switch while they are opened;
  //   - when memory is exhausted and the former destination has settings of more than 384
  //     characters or 16 words, unless `next` is the debugger print.
  //
  // `next` stays the caller's. No thread is within the former destination's put when the call
  // returns, as far as this stream led there, and none enters it afterwards, so it may be
  // destroyed once no stream uses it. PASSIVE_LEVEL.
  iTraceDestination* setDestination(iTraceDestination& next);

  // The filter, owned by the stream; null when it could not be allocated, and then every line is
  // shown.
  tTraceFilter* getFilter();

  // Opens a line: takes the line mutex when it is on, asks the filter whether the line is shown,
  // writes the enabled fields as "[component--line--file-----] " and indents by the nesting level.
  // `component` and `file` may be null, which counts as empty text; of `file` only what follows the
  // last slash or backslash is shown unless the path is enabled. `verbosity`: the default filter
  // shows levels of 100 and above. A thread that opened a line must end it with endl.
  tTrace& putPrefix(char const* component, tSSVersion version, unsigned int line, char const* file,
                    unsigned int verbosity, tTraceType type);
  tTrace& putPrefix(char* component, tSSVersion version, unsigned int line, char* file,
                    unsigned int verbosity, tTraceType type);

  // Opens a line of a place in the source, as putPrefix does, if it is shown: then it is the
  // stream, and the caller puts the line's text and ends it with endl. For a line that is not shown
  // null: it is ended already, and nothing is to be put. The counter is not read at the line's
  // beginning unless a field shows a time. `type` is no block for the macros of single lines; a
  // block is nested whether it is shown or not.
  //
  // The prefix of a site costs a copy while the stream shows the fields that it shows at the start.
  tTrace* openLine(tTraceSite const& site, u32 verbosity) {
    if (!parts.isSurelyHidden(verbosity)) return openSite(site, verbosity, kTraceLine);
    parts.clock.end();
    return nullptr;
  }
  tTrace* openLine(tTraceSite const& site, u32 verbosity, tTraceType type) {
    return openSite(site, verbosity, type);
  }
  tTrace* openLine(tLineOrigin const& origin, u32 verbosity, tTraceType type = kTraceLine);

  // The same of a line of a place that shows only some of its lines, by a rule of `limit`, which
  // belongs to the place. A line that the rule leaves out is a line that is not shown. When the
  // rule of a second lets a line through behind others that it left out, a line in front of it says
  // how many: "12 lines left out".
  tTrace* openLine(tTraceSite const& site, u32 verbosity, tLineLimit& limit, tLineLimit::tRule rule,
                   u32 n) {
    if (!parts.isSurelyHidden(verbosity)) {
      return openLimited(&site, site, verbosity, limit, rule, n);
    }
    parts.clock.end();
    return nullptr;
  }
  tTrace* openLine(tLineOrigin const& origin, u32 verbosity, tLineLimit& limit,
                   tLineLimit::tRule rule, u32 n) {
    return openLimited(nullptr, origin, verbosity, limit, rule, n);
  }

  // Writes the names of the enabled fields in the order of the prefix, as a legend:
  // "tTrace::putPrefixPrototype=[compname--linenumber--filename]". Opens and ends no line.
  tTrace& putPrefixPrototype();

  // Measures what a time delta contains when lines follow each other at once, the way from one
  // line's end to the next one's beginning, so that deltas leave it out; lines at once then show
  // about the cost of one reading of the counter. Three averages of 25 measurements, for block
  // entries, block exits and plain lines, each less a reading and no more than one; what an
  // interrupt lengthens is not counted.
  //
  // It traces on a stream of its own: this one goes on, and what other threads switch and write
  // meanwhile is as ever. Deltas count on; while they are switched off, they count from here. Does
  // nothing when the platform cannot open a lock. IRQL <= APC_LEVEL.
  void calibrate();

  // Appends `text` up to its terminator; null counts as empty text. The compiler gives the length
  // of a literal.
  tTrace& put(char const* text) {
    return VEX_KNOWS_LENGTH(text) ? put(text, static_cast<unsigned int>(VEX_KNOWN_LENGTH(text)))
                                  : putTerminated(text);
  }

  // Appends exactly `length` characters, NUL characters included. Null counts as empty text.
  tTrace& put(char const* text, unsigned int length);

  // Appends the characters up to the first NUL.
  tTrace& put(_STL::string const& text);

  // Appends the low byte of every UTF-16 unit; of a pointer up to the terminator, and null counts
  // as empty text.
  tTrace& put(_STL::wstring const& text);
  tTrace& put(wchar_t const* text);

  // Appends the one character.
  tTrace& put(char character);
  tTrace& put(signed char character);
  tTrace& put(unsigned char character);

  // Appends "true(1)" or "false(0)".
  tTrace& put(bool value);

  // Append a number in `radix`, 2 or more: 0xFF in radix 16, 255 in radix 10, else the radix in
  // front, as in 2#11111111. The digits above 9 are the capital letters, and behind Z the
  // characters that follow it in the character set: 35 is Z, 36 is [, 200 is the last, and then it
  // begins again with NUL. There are no leading zeros, and a negative value is "-" and its
  // magnitude: -0x1A. A radix below 2 counts as 10. The fundamental types are named here, so every
  // integer has its overload whether long has 32 bits (Windows) or 64.
  tTrace& put(short value, u32 radix);
  tTrace& put(unsigned short value, u32 radix);
  tTrace& put(int value, u32 radix);
  tTrace& put(unsigned int value, u32 radix);
  tTrace& put(long value, u32 radix);
  tTrace& put(unsigned long value, u32 radix);
  tTrace& put(long long value, u32 radix);
  tTrace& put(unsigned long long value, u32 radix);

  // Appends the address in radix 16. Every pointer is an address but those to char and wchar_t,
  // which are text unless they are volatile.
  tTrace& put(void const* address);
  tTrace& put(void const volatile* address);
  template <class tResult, class... tArguments>
  tTrace& put(tResult (*function)(tArguments...)) {
    return put(reinterpret_cast<void const*>(function));
  }

  // A pointer to a member has no address to show; it would be taken for "true".
  template <class tMember, class tClass>
  tTrace& put(tMember tClass::*) = delete;

  // Appends the address that the memory block reference points to, in radix 16.
  tTrace& put(tMemBlockReferenceTemplate<char>& block);

  // Appends the version's text, such as 1.0.0f7.
  tTrace& put(tSSVersion version);

  // Appends the status's text in full, of at most 1,023 characters. It begins with a newline and so
  // ends the line that it is put into.
  tTrace& put(tStatus2& status);
  tTrace& put(tStatus2 const& status);

  // Lets the object write itself.
  tTrace& put(iTraceable const& object);

  // Appends a hex dump of `length` bytes at `address`, a line for as many whole groups of
  // `unitSize` bytes as 16 bytes hold (16 bytes a line for units of 1, 2, 4, 8 and 16, 15 for a
  // unit of 3, 12 for one of 12): the address, the groups, and the bytes as characters. Units of 4
  // and 2 are shown as little-endian numbers, all others byte by byte; what the last line lacks is
  // shown as XX:
  //
  //     00007FF712345678: 03020100 04XXXXXX XXXXXXXX XXXXXXXX : .....
  //
  // The unit is the smallest of `length`, `unitSize` and 16; a unit size of 0 counts as 1. The
  // first line continues the current one, the others have no prefix, and each ends with a newline.
  // Null or length 0 writes nothing. The memory must be readable at the caller's IRQL.
  tTrace& put(void const* address, u32 length, u32 unitSize);
  tTrace& put(void* address, u32 length, u32 unitSize);

  // Appends text formatted in the manner of printf, of at most kMaxTraceLine - 1 characters:
  //
  //     trace.putf("slot %u: %-8s 0x%04hX, %+d degrees", slot, name, control, temperature);
  //
  // A conversion is "%", any of the flags, a width, "." and a precision, one length letter, and the
  // conversion letter; all but the last may be missing. Width and precision are decimal digits or
  // "*", which takes an int argument. A negative width argument is the flag "-" and its magnitude,
  // a negative precision argument is no precision, "." without digits is a precision of 0.
  //
  //   flags     -        pad on the right
  //             +        a plus sign in front of decimal numbers that are not negative
  //             blank    a blank there; "+" prevails
  //             #        a 0 in front of octal numbers, 0x or 0X in front of hexadecimal ones
  //             0        pad numbers with zeros, behind sign and prefix; not with "-", not with a
  //                      precision
  //   length    h        numbers have 16 bits
  //             l        text is wide (UTF-16); means nothing to numbers
  //             L        means nothing
  //   letter    d i      i32 in decimal
  //             u        u32 in decimal
  //             o x X    u32 in octal, in hexadecimal with small or capital digits
  //             s        text, nothing if null; a precision limits the characters taken, and text
  //                      of that many needs no terminator. Of wide text, the low byte of every unit
  //             %        a percent sign; flags, width and precision do nothing
  //             c p      nothing, not even padding, but the argument is taken
  //             e E f F g G
  //                      "<<'f' not supported>>", with the letter; no argument is taken
  //             others   "<<invalid conversion specifier 'q'>>", with the character; the rest of
  //                      the format is dropped
  //
  // A precision is the least number of digits. Zero has neither 0x nor a second 0 in front, and
  // with a precision of 0 no digits (but a 0 for %#o). A format that ends within a conversion ends
  // in front of it.
  //
  // There are no 64-bit numbers: of a 64-bit argument, %d, %u, %o and %x show the low half, and
  // %lld, %zu and %I64d are invalid, as are %wZ and %Z. For those, and for addresses, there is put,
  // with "oxdiagk/kernelValues.h" for counted strings.
  //
  // Since %f takes no argument, the next conversion takes its. On 64-bit Windows that shows the low
  // half of the floating-point value. On targets that pass floating-point arguments in registers of
  // their own (x86-64 Linux) it takes the next integer or address argument.
  //
  // Longer text is cut, behind the warning
  //
  //     !!!Formatted string exceeds kMaxTraceLine characters!!!!
  //
  // As with put, text beyond 255 characters arrives in pieces, a newline ends a line, and text ends
  // at a NUL (wide units such as 0x0100 bring one). Null writes nothing. While the line is not
  // shown, no argument is looked at. Compilers are deliberately not asked to check the format: they
  // know printf, and would pass the very conversions that are not in this table.
  //
  // Allocates nothing, uses no floating point, and less than 2 KiB of stack. Any IRQL at which
  // format and text may be read and the destination may be written: long text and newlines go to it
  // at once.
  tTrace& putf(char const* format, ...);

  // The size of putf's text in bytes, terminator included.
  static constexpr u32 kMaxTraceLine = 1024;

  // Ends the line: hands it to the destination with a newline, unless it is not shown; gives the
  // line mutex back; remembers the time.
  tTrace& endl();

  // Reads option words. Filter, token and a destination's own words take effect as they are read,
  // everything else after the last word.
  //
  //   --on, --off                  master switch
  //   --compname, --compver, --linenumber, --filename, --threadid, --verbosity
  //                                switches of prefix fields; "on", "off" or a filter term on the
  //                                field, such as ==5, may follow. A term turns the switch on. With
  //                                nothing behind it the switch is on and the field unfiltered.
  //   --filepath, --timestamp, --timedelta, --indent, --truncation, --mutex
  //                                switches; "on" or "off" may follow
  //   --prefixwidth N              minimum prefix width
  //   --filter EXPRESSION          filter expression; with nothing behind it the filter is emptied
  //   --destination NAME [WORDS]   destination ("vex", "serial", "file"; no name is "vex"), and
  //                                its own words
  //   --mutex-kernel-token N:0     token for opening the line mutex; all later words are tokens too
  //   --calibrate                  calibrate() after everything else
  //
  // A number is decimal, 0x and hexadecimal digits, or radix#digits with the digits 0 to 9. Letters
  // are no digits behind "#": 20#1J, which put writes for 39, is read as 1.
  void configure(int argc, char** argv) override;
  using tConfigurable::configure;

  // Does nothing: the stream has no configuration source of its own.
  void configure() override;

  // Everything that configure reads, except the mutex token and an empty filter. docs/options.md
  // lists which settings configure does not give back when it reads this text.
  void inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  // A pop configures the stream with the text that inquire gave at the push: it installs the
  // destination anew, calibrates, and leaves terms alone when no filter was set at the push. When
  // memory is exhausted a push saves nothing, and a pop drops what was saved and changes nothing;
  // when there is memory but for a term of the filter, that term is missing.
  void pushConfiguration() override;
  void popConfiguration() override;

  // Configurations that are saved now. PASSIVE_LEVEL.
  u32 countSavedConfigurations();

 protected:
  // A private stream, with the settings of a fresh one: for components that want one of their own,
  // by deriving from this class. `first` must outlive the stream or its use by it, and is open. The
  // destination that the stream has at its end must be alive then. It is closed if the stream was
  // switched to it and no other stream uses it; `first` is not. What a close then switches the
  // stream to is closed in turn, for four closes at most.
  //
  // All streams lock their lines by the one named lock. A stream that is destroyed by a thread
  // within a line of another cannot close its handle of it, which then stays until unload.
  explicit tTrace(iTraceDestination& first);

  // The module's stream before and after its life.
  explicit tTrace(tAtRest) : parts(tAtRest()) {}

  // The times of this stream's lines, and the ticks that hidden lines carry into the next delta.
  tLineClock& getClock() { return parts.clock; }
  u64& getCarriedDelta() { return parts.carriedDelta; }

 private:
  tTrace* openSite(tTraceSite const& site, u32 verbosity, tTraceType type);
  tTrace& putTerminated(char const* text);
  tTrace* openLimited(tTraceSite const* site, tLineOrigin const& origin, u32 verbosity,
                      tLineLimit& limit, tLineLimit::tRule rule, u32 n);
  void append(char const* text, u64 length) { parts.append(text, length); }
  void appendLowBytes(wchar_t const* units, u64 count);
  void appendSigned(i64 value, u32 radix);
  void appendNumber(u64 magnitude, u32 radix, bool isNegative);
  bool isWriting() const { return parts.isWriting(); }
  void end();

  tTraceParts parts;
};

}  // namespace nOXDIAG100

#undef OXDIAG_TRACE_SWITCH
