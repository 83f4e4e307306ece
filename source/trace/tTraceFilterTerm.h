#pragma once

#include "ntos/types.h"
#include "vexk/tMemBlockReferenceBase.h"

namespace nOXDIAG100 {

class tTraceFilterLine;

// One comparison of a filter, a link of its list. A term and its text share one block of non-paged
// memory, which the term itself owns.
class tTraceFilterTerm {
 public:
  // What getOperator() returns for a term without one; else it is an index of
  // kTraceFilterOperators.
  static constexpr i32 kNoOperator = -1;

  // A term of `length` bytes of text: operator, blanks, value. `field` must be a field. Null when
  // memory is exhausted.
  static tTraceFilterTerm* create(char const* operatorAndValue, size_t length, u32 connector,
                                  i32 field);

  // Gives the term's block back. The term must be unlinked.
  static void destroy(tTraceFilterTerm* term);

  tTraceFilterTerm(tTraceFilterTerm const&) = delete;
  tTraceFilterTerm& operator=(tTraceFilterTerm const&) = delete;

  // A link that lines follow while the filter is changed, and how it is changed.
  static tTraceFilterTerm const* follow(tTraceFilterTerm* const& link) {
    return __atomic_load_n(&link, __ATOMIC_SEQ_CST);
  }
  static void lead(tTraceFilterTerm*& link, tTraceFilterTerm* to) {
    __atomic_store_n(&link, to, __ATOMIC_SEQ_CST);
  }

  // The outcome for `line`; `outcomeBefore` is that of the term before, which a term without
  // operator repeats.
  bool evaluate(tTraceFilterLine const& line, bool outcomeBefore) const;

  i32 getField() const { return field; }
  i32 getOperator() const { return operation; }

  // Whether a number satisfies the operation, which is not kNoOperator, with the constant `right`.
  static bool isSatisfied(i32 operation, u32 left, u32 right);

  // The constant as a number: what line number, verbosity and thread id are compared with.
  u32 getNumber() const { return number; }

  // The constant as it was given; null for line number and verbosity, which keep the number alone.
  char const* getText() const { return text; }

  tTraceFilterTerm* next = nullptr;
  tTraceFilterTerm* previous = nullptr;

  u32 getConnector() const { return __atomic_load_n(&connector, __ATOMIC_RELAXED); }
  void setConnector(u32 value) { __atomic_store_n(&connector, value, __ATOMIC_RELAXED); }

 private:
  tTraceFilterTerm(tMemBlockReferenceBase&& itsBlock, u32 connector, i32 field);
  ~tTraceFilterTerm() = default;

  void setValue(char const* value, size_t length);
  i32 compare(tTraceFilterLine const& line) const;

  u32 connector;
  i32 field;
  i32 operation = kNoOperator;
  u32 number = 0;
  char const* text = nullptr;
  tMemBlockReferenceBase block;
};

}  // namespace nOXDIAG100
