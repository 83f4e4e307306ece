#pragma once

// What woven code asks, included before each woven source: whether a mutant is the chosen one. Each
// question marks its place as reached. `id` is the number of the place's first mutant, counted on
// from OXDIAG_MUTANT_BASE, so that every mutant of all sources has a number of its own.

extern "C" {
extern int oxdiagMutantChosen;              // 0: none
extern unsigned char* oxdiagMutantReached;  // a byte for each number
}

namespace nMUTANT {

inline bool is(int id) {
  oxdiagMutantReached[id] = 1;
  return id == oxdiagMutantChosen;
}

inline bool always(int id, bool value) {
  return is(id) || value;
}
inline bool never(int id, bool value) {
  return !is(id) && value;
}

// Of a condition: always, never, and for `id` + 2 the other way round.
inline bool truth(int id, bool value) {
  bool const isAlways = is(id);
  bool const isNever = is(id + 1);
  return isAlways || (!isNever && value);
}
inline bool branch(int id, bool value) {
  return is(id + 2) ? !value : truth(id, value);
}

template <typename tA, typename tB>
inline bool less(int id, tA const& a, tB const& b) {
  return is(id) ? a <= b : a < b;
}
template <typename tA, typename tB>
inline bool atMost(int id, tA const& a, tB const& b) {
  return is(id) ? a < b : a <= b;
}
template <typename tA, typename tB>
inline bool greater(int id, tA const& a, tB const& b) {
  return is(id) ? a >= b : a > b;
}
template <typename tA, typename tB>
inline bool atLeast(int id, tA const& a, tB const& b) {
  return is(id) ? a > b : a >= b;
}

#define OXDIAG_MUTANT_OPERATOR(name, op, other)                          \
  template <typename tA, typename tB>                                    \
  inline auto name(int id, tA const& a, tB const& b)->decltype(a op b) { \
    return is(id) ? static_cast<decltype(a op b)>(a other b) : a op b;   \
  }
OXDIAG_MUTANT_OPERATOR(plus, +, -)
OXDIAG_MUTANT_OPERATOR(minus, -, +)
OXDIAG_MUTANT_OPERATOR(times, *, +)
OXDIAG_MUTANT_OPERATOR(over, /, *)
OXDIAG_MUTANT_OPERATOR(rest, %, /)
OXDIAG_MUTANT_OPERATOR(both, &, |)
OXDIAG_MUTANT_OPERATOR(any, |, &)
OXDIAG_MUTANT_OPERATOR(one, ^, |)
OXDIAG_MUTANT_OPERATOR(up, <<, >>)
OXDIAG_MUTANT_OPERATOR(down, >>, <<)
#undef OXDIAG_MUTANT_OPERATOR

// A constant: one more; of 1: 0.
template <typename tValue>
inline tValue constant(int id, tValue value) {
  tValue const other = static_cast<tValue>(value == 1 ? 0 : value + 1);
  return is(id) ? other : value;
}
inline bool constant(int id, bool value) {
  return is(id) != value;
}

// What is returned: nothing, or for `id` + 1 of a number one more.
template <typename tValue>
inline tValue value(int id, tValue returned) {
  return is(id) ? tValue{} : returned;
}
template <typename tValue>
inline tValue number(int id, tValue returned) {
  return is(id + 1) ? static_cast<tValue>(returned + 1) : value(id, returned);
}

}  // namespace nMUTANT
