#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "oxdiagk/atomicWord.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

class tTraceFilterTerm;
class tTraceFilterLine;

// What decides whether a trace line is shown: an ordered list of terms, each comparing one property
// of the line with a constant, joined strictly left to right by "&&" and "||".
//
// In text (the option "--filter", and the written form of write()):
//
//     verbosity>=100
//     compname==slotbus && verbosity>=50 || linenumber<500
//
// There is no precedence: a || b && c means (a || b) && c. Field words may be shortened: each
// stands for the first of linenumber, compname, compver, filename, verbosity, threadid that begins
// with it, so "line" is the line number and "comp" the component name. Operators are == != > < >=
// <=. Values run to the next blank, "|" or "&". Line number, verbosity and thread id compare as
// 32-bit unsigned numbers and are given in decimal, as 0x1F or as 2#11111; the other fields compare
// byte by byte as unsigned characters. The file is compared as the line's author passed it, with
// its path.
//
// Malformed text is never reported. A term with an unknown field is dropped. A term without one of
// the operators (verbosity=5, verbosity 5) repeats the outcome of the term before it; the outcome
// before the first term is false, so a filter of one such term shows nothing.
//
// Thread safety: evaluate() and usesField() may be called on any number of threads while another
// one changes the filter; a line that is judged at that moment may be judged by a part of the
// terms. A removed term's memory is released when no evaluation is under way, at a later change or
// with the filter if need be. Everything else is for one thread at a time: those who change or
// write a filter order this among themselves. Of the filter of a trace stream, configure, inquire,
// push and pop of the stream are in that order already; whoever changes it through
// tTrace::getFilter() must not do so while another thread calls those. A filter is destroyed when
// nobody evaluates it any more.
// IRQL: changing allocates and releases non-paged memory: <= DISPATCH_LEVEL. Evaluating and writing
// allocate nothing and take no lock: any IRQL.
class OXDIAG_API tTraceFilter {
 public:
  VEX_MODULE_MEMORY

  // The property of a line that a term looks at.
  enum tField : i32 {
    kNoField = -1,
    kComponentName = 0,
    kComponentVersion = 1,
    kLineNumber = 2,
    kFileName = 3,
    kThreadId = 4,
    kVerbosity = 5,
    kFieldCount = 6,
  };

  // How a term is joined to what stands before it.
  enum tConnector : u32 {
    kFirst = 0,  // not at all: the result is this term's outcome
    kAnd = 1,    // "&&"
    kOr = 2,     // "||"
  };

  // A filter with the default term, verbosity>=100. When that cannot be allocated the filter is
  // empty and hasFailed() is true.
  tTraceFilter();
  ~tTraceFilter();
  tTraceFilter(tTraceFilter const&) = delete;
  tTraceFilter& operator=(tTraceFilter const&) = delete;

  // A new filter with the default term, to be freed with delete; null when memory is exhausted.
  static tTraceFilter* create();

  // Reads an expression. Every term that no "&&" or "||" precedes empties the filter first, so an
  // expression that begins with a term replaces the filter and one that begins with a connector
  // extends it; this holds also for a term whose field is unknown. Reading ends where the text ends
  // before a term has its value, and where a value is empty; the filter may then be empty, as after
  // "on". An empty or blank text changes nothing, nor does null.
  //
  //     filter.parseExpression("verbosity>=200");        // replaces the default term
  //     filter.parseExpression("&& linenumber<500");     // and adds a second one
  void parseExpression(char const* expression);

  // Appends one term. `operatorAndValue` is an operator, blanks (none will do) and the value, which
  // is the rest of the text; it may be empty. Text that begins with no operator, a blank included,
  // makes a term without operator. `field` is a tField, `connector` a tConnector; the first term of
  // a filter gets kFirst in any case. Nothing is added for kNoField or another number that is no
  // field or no connector, for null, and when memory is exhausted (hasFailed() tells).
  //
  //     filter.addTerm(">= 200", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  void addTerm(char const* operatorAndValue, u32 connector, i32 field);

  // The same for a text of `length` bytes that need not be terminated.
  void addTerm(char const* operatorAndValue, size_t length, u32 connector, i32 field);

  // Removes every term; every line is shown then.
  void removeAll();

  // Removes the terms of one field. What is first afterwards gets the connector kFirst.
  void removeField(i32 field);

  // Whether a line with these properties is shown. Null texts count as empty. Only the properties
  // for which usesField() is true are looked at; another thread may add a term about others
  // meanwhile, so a caller who leaves some out may only do so while nobody changes the filter.
  bool evaluate(char const* component, char const* versionText, u32 line, char const* file,
                u32 threadId, u32 verbosity) const;

  // The same, of a line that finds out version and thread when a term asks for them. For the
  // stream: a component has no such line.
  bool evaluate(tTraceFilterLine const& line) const;

  // Whether the verbosity alone hides a line, or shows it; when it does neither, evaluate() tells.
  // Most filters are one term on the verbosity, and then one comparison decides. Each answer is
  // that of one moment: while the filter is changed, a line may be neither at first and then one.
  bool isSurelyHidden(u32 verbosity) const { return judge(verbosity) == kHidden; }
  enum tVerdict { kHidden, kShown, kUndecided };
  tVerdict judge(u32 verbosity) const {
    u64 const range = loadRelaxed(shownRange);
    if (verbosity - static_cast<u32>(range) > static_cast<u32>(range >> 32)) return kHidden;
    return range == kNoRange ? kUndecided : kShown;
  }

  // Whether a term looks at `field`; false for what is no field.
  bool usesField(i32 field) const {
    u32 const fields = loadRelaxed(usedFields);
    return field >= 0 && field < kFieldCount && ((fields >> field) & 1) != 0;
  }

  // Writes the filter as option text, with the blank before it, which parseExpression reads as the
  // same filter unless a term has no operator, an empty value, or a value with a blank, a double
  // quote, "|" or "&":
  //
  //      --filter "verbosity>=100 && compname==slotbus"
  //
  // and nothing for an empty filter. Numbers are in decimal, but a thread id is written as it was
  // given; a term without operator is written without one.
  //
  // With a buffer and a size (in bytes) the text is copied with its terminator, cut to fit, and
  // buffer[size - 1] becomes a terminator in any case. `needed`, unless null, gets the length of
  // the whole text plus one. Returns where copying stopped: the place of the terminator,
  // `buffer + size` when the text was cut, or a null buffer as it is.
  char* write(char* buffer, unsigned int size, unsigned int* needed) const;

  // Whether memory for a term was lacking, at any time since the filter was built. The terms before
  // and after the lost one are in place.
  bool hasFailed() const { return failed; }

  bool isEmpty() const { return first == nullptr; }

 private:
  static constexpr u64 kNoRange = ~0ull;  // see tTraceFilterShortForm::getShownRange

  bool evaluateTerms(tTraceFilterLine const& line) const;
  void append(tTraceFilterTerm* term);
  void remove(tTraceFilterTerm* term);
  void setUsedFields(u32 fields);
  void publishShortForm();
  void releaseRemoved();

  tTraceFilterTerm* first = nullptr;
  tTraceFilterTerm* last = nullptr;
  tTraceFilterTerm* removed = nullptr;  // out of the list, perhaps still looked at
  u64 shortForm = 0;                    // what needs no list, see tTraceFilterShortForm
  u64 shownRange = kNoRange;            // of a verbosity: the first that is shown, how many follow
  mutable u32 evaluations = 0;          // that walk the list at this moment
  u32 usedFields = 0;                   // a bit for each field that a term looks at
  bool failed = false;
};

}  // namespace nOXDIAG100
