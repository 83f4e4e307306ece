#pragma once

// Contracts of a client component, in one statement each.
//
// Before it uses them a component defines, once for all its sources:
//
//     #define OXDIAG_COMPONENT "slotbus"                  // char const*: the component's name
//     #define OXDIAG_COMPONENT_VERSION kSlotbusVersion    // tSSVersion: the component's version
//
// and, if it wants another value than this,
//
//     OXDIAG_TRACE_FILE     char const*: the source file; by default __FILE__
//
// Then:
//
//     u32 tRack::getPower(u32 slot) const {
//       OXDIAG_REQUIRE(slot < count);
//       u32 const power = readPower(slot);
//       OXDIAG_ENSURE_MESSAGE(power <= kMostPower, "more power than a slot can have");
//       return power;
//     }
//
// Each kind of contract has a switch of its own in each category (tAssertConfiguration). While the
// switch is on the condition is evaluated, once; while it is off it is not. A condition that is
// false is reported as a line of the trace stream, whatever stream the component's own lines go to,
// and then the category's switches decide: the system stops, or the debugger breaks in and
// execution goes on behind the contract, or it just goes on. In the category "default" the debugger
// breaks in, in "warning" nothing more happens. So code must be right without its contracts, and a
// condition must not have effects.
//
// A contract remembers where its switch is, in 24 bytes of its component's data, and a check is one
// look at the switch. Two kinds of contracts look their category up at every check: those whose
// category does not exist, and those whose category is not written as a literal. A switch that is
// set, a category that is made, and an unload of the library take effect at the next check.
// A constexpr function cannot have a contract, since C++20 does not allow static storage there.
//
// Every kind has three forms:
//
//   OXDIAG_REQUIRE(condition)                        category "default", the condition as message
//   OXDIAG_REQUIRE_MESSAGE(condition, message)       category "default"
//   OXDIAG_REQUIRE_IN(category, condition, message)
//
// `condition`: an expression that an `if` would take; a declaration is not accepted. In the first
// form it may hold commas of template arguments; in the others it then needs parentheses of its
// own. `message` (char const*, null is none): evaluated only when the condition is false, and then
// once. `category` (char const*): evaluated once.
//
// With OXDIAG_CONTRACT_STRIP defined, all of them compile to nothing: the arguments must still be
// valid code, but none is evaluated.
//
// IRQL and threads: a contract whose condition is true, or whose switch is off, allocates nothing,
// takes no lock and works at any IRQL at which its texts may be read and the component's data may
// be accessed. One that is false writes a trace line and works where the trace stream may be
// written; see "oxdiagk/assertion.h".

#include "oxdiagk/assertion.h"
#include "oxdiagk/tContractSite.h"

#ifndef OXDIAG_TRACE_FILE
#define OXDIAG_TRACE_FILE __FILE__
#endif

// clang-format off

// What must hold when a function is called; the caller's duty.
#define OXDIAG_REQUIRE(...) \
  OXDIAG_CONTRACT(Require, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_REQUIRE_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(Require, "default", message, condition)
#define OXDIAG_REQUIRE_IN(category, condition, message) \
  OXDIAG_CONTRACT(Require, category, message, condition)

// What a function promises to have done when it returns.
#define OXDIAG_ENSURE(...) \
  OXDIAG_CONTRACT(Ensure, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_ENSURE_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(Ensure, "default", message, condition)
#define OXDIAG_ENSURE_IN(category, condition, message) \
  OXDIAG_CONTRACT(Ensure, category, message, condition)

// What holds for an object whenever none of its operations is under way.
#define OXDIAG_CLASS_INVARIANT(...) \
  OXDIAG_CONTRACT(ClassInvariant, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_CLASS_INVARIANT_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(ClassInvariant, "default", message, condition)
#define OXDIAG_CLASS_INVARIANT_IN(category, condition, message) \
  OXDIAG_CONTRACT(ClassInvariant, category, message, condition)

// What holds in every pass of a loop.
#define OXDIAG_LOOP_INVARIANT(...) \
  OXDIAG_CONTRACT(LoopInvariant, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_LOOP_INVARIANT_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(LoopInvariant, "default", message, condition)
#define OXDIAG_LOOP_INVARIANT_IN(category, condition, message) \
  OXDIAG_CONTRACT(LoopInvariant, category, message, condition)

// Anything else that the author is sure of.
#define OXDIAG_CHECK(...) \
  OXDIAG_CONTRACT(Check, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_CHECK_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(Check, "default", message, condition)
#define OXDIAG_CHECK_IN(category, condition, message) \
  OXDIAG_CONTRACT(Check, category, message, condition)

// What is false only when something exceptional, though possible, has happened: exhausted memory,
// a device that is gone.
#define OXDIAG_EXCEPTION(...) \
  OXDIAG_CONTRACT(Exception, "default", #__VA_ARGS__, __VA_ARGS__)
#define OXDIAG_EXCEPTION_MESSAGE(condition, message) \
  OXDIAG_CONTRACT(Exception, "default", message, condition)
#define OXDIAG_EXCEPTION_IN(category, condition, message) \
  OXDIAG_CONTRACT(Exception, category, message, condition)

// What the macros above consist of. The condition is converted by `bool(...)`, so that a comma
// between two conditions is an error and not an operator.
#ifndef OXDIAG_CONTRACT_STRIP

#define OXDIAG_CONTRACT(kind, category, message, ...)                                \
  do {                                                                               \
    static constinit ::nOXDIAG100::tContractSite oxdiagSite_;                        \
    if (::nOXDIAG100::tContract const oxdiagContract_(                               \
            (category), OXDIAG_COMPONENT, OXDIAG_COMPONENT_VERSION, __LINE__,        \
            OXDIAG_TRACE_FILE);                                                      \
        oxdiagContract_.isChecked<::nOXDIAG100::isTextLiteral(#category)>(           \
            oxdiagSite_, ::nOXDIAG100::tContractSite::k##kind,                       \
            &::nOXDIAG100::eval##kind) &&                                            \
        !bool(__VA_ARGS__)) [[unlikely]]                                             \
      oxdiagContract_.fail(message);                                                 \
  } while (false)

#else

#define OXDIAG_CONTRACT(kind, category, message, ...) \
  do {                                                \
    if (false) {                                      \
      static_cast<void>(category);                    \
      static_cast<void>(bool(__VA_ARGS__));           \
      static_cast<void>(message);                     \
    }                                                 \
  } while (false)

#endif
// clang-format on

namespace nOXDIAG100 {

// Whether an expression, as it is written, is nothing but text literals: the same text whenever it
// is evaluated.
constexpr bool isTextLiteral(char const* expression) {
  bool isWithin = false;
  for (; *expression != 0; ++expression) {
    if (*expression == '"') {
      isWithin = !isWithin;
    } else if (isWithin && *expression == '\\') {
      ++expression;
    } else if (!isWithin && *expression != ' ') {
      return false;
    }
  }
  return true;
}

// Where a contract stands. For the macros only.
class tContract {
 public:
  tContract(char const* category, char const* component, tSSVersion version, unsigned int line,
            char const* file)
      : category(const_cast<char*>(category)),
        component(const_cast<char*>(component)),
        file(const_cast<char*>(file)),
        version(version),
        line(line) {}

  using tEvaluation = bool(char*, char*, tSSVersion, unsigned int, char*);

  // With a literal the site remembers the category; any other text may differ from call to call.
  template <bool isLiteral>
  bool isChecked(tContractSite& site, tContractSite::tKind kind, tEvaluation* evaluate) const {
    if constexpr (isLiteral) return site.isChecked(category, kind);
    return evaluate(category, component, version, line, file);
  }

  void fail(char const* message) const {
    notificationAction(category, component, version, line, file, const_cast<char*>(message));
    continuationAction(category, component, version, line, file);
  }

 private:
  char* category;
  char* component;
  char* file;
  tSSVersion version;
  unsigned int line;
};

}  // namespace nOXDIAG100
