#pragma once

// Trace lines and block traces of a client component, in one statement each.
//
// Before it uses them a component defines, once for all its sources:
//
//     #define OXDIAG_COMPONENT "slotbus"                  // char const*: the component's name
//     #define OXDIAG_COMPONENT_VERSION kSlotbusVersion    // tSSVersion: the component's version
//
// and, if it wants other values than these,
//
//     OXDIAG_TRACE_STREAM   tTrace&: the stream to write to; by default the module's stream
//     OXDIAG_TRACE_FILE     char const*: the source file; by default __FILE__
//
// Then:
//
//     void tRack::powerUp(u32 slot) {
//       OXDIAG_BLOCK_OBJECT(120, this);
//       OXDIAG_TRACE(110, put("slot ").put(slot, 10).put(" powers up"));
//     }
//
// `verbosity` is the level of the line, an unsigned number. The larger it is, the more important is
// the line: the default filter shows 100 and above. A violated contract is traced at 105. What we
// recommend for the lines of a component, so that one filter means the same to all:
//
//     150   a result that everybody wants to see
//     140   a failure
//     120   something that comes or goes: a device, a connection
//     100   what is being done
//      60   details for whoever looks for a fault in the component; dumps of data
//
// Every argument is evaluated at most once. With OXDIAG_TRACE_STRIP defined, all of them compile to
// nothing: the arguments must still be valid code, but none is evaluated.
//
// Each place has a constant of its own, in static storage, and a limit beside it, so none of them
// is for a constexpr function: C++20 does not allow one there. Of a component, version and file
// that are literals or constexpr the constant holds the beginning of the prefix; any others are
// looked at for each line.
//
// IRQL and threads: as for tTrace.

#include "oxdiagk/tBlockTracer.h"
#include "oxdiagk/tSiteBlockTracer.h"
#include "oxdiagk/tTrace.h"
#include "vexk/compileTime.h"

#ifndef OXDIAG_TRACE_STREAM
#define OXDIAG_TRACE_STREAM ::nOXDIAG100::tTrace::getInstance()
#endif

#ifndef OXDIAG_TRACE_FILE
#define OXDIAG_TRACE_FILE __FILE__
#endif

// OXDIAG_TRACE(verbosity, chain): a whole line. `chain` is what would be called on the stream: put
// and its like, joined by points; it may contain commas. When the line is not shown the chain is
// not evaluated. The macro ends the line itself: no endl in the chain. A statement.
//
// Speed: where component, version and file are constants, as with the definitions above, the
// compiler makes the prefix of each line (tTraceSite), and a shown line copies it while the stream
// shows the fields that it shows at the start. A line that the master switch or a filter on the
// verbosity hides costs one look and one reading of the counter. A line reads the counter at its
// beginning only while a time stamp or a time delta is shown.
//
// A line within a line: when an argument of the chain traces, or a contract fails in it, the other
// line arrives behind what the chain has put so far, and ends it. The rest of the chain follows as
// a line without a prefix:
//
//     OXDIAG_TRACE(110, put("slot ").put(slot, 10).put(": ").put(readReply(slot), 10));
//
//     [rack--12--rack.cpp---] slot 3: [rack--7--rack.cpp----] reading      if readReply traces
//     64
//
// Nothing is lost. When the other line is hidden, the outer one stays whole; when the outer one is
// hidden, the macro does not evaluate the chain, so the other line is not written either. Values
// that are read before the line is opened leave both lines whole:
//
//     u32 const length = readReply(slot);
//     OXDIAG_TRACE(110, put("slot ").put(slot, 10).put(": ").put(length, 10));
//
// OXDIAG_TRACE_ONCE(verbosity, chain), OXDIAG_TRACE_EVERY(n, verbosity, chain),
// OXDIAG_TRACE_AT_MOST(n, verbosity, chain): lines of a place that may write too many of them. Each
// is OXDIAG_TRACE in all else.
//
//     OXDIAG_TRACE_ONCE(120, put("the first interrupt"));
//     OXDIAG_TRACE_EVERY(1000, 100, put("packets: ").put(count, 10));
//     OXDIAG_TRACE_AT_MOST(5, 140, put("no reply from slot ").put(slot, 10));
//
// Once: the first line of the place since its module was loaded. Every n-th: the first line, and
// then each n-th behind it. At most n a second: a second begins with a line, the n first lines in
// it are shown, the others are left out; the next one that is shown has a line in front of it, from
// the same place, "12 lines left out". `n` is an unsigned number, evaluated for each line; 0 shows
// no line at all.
//
// Only lines count that the master switch and the filter let pass: a limit is for what somebody
// sees, and a line that is hidden uses nothing of it up. A line that is left out is a hidden line;
// its chain is not evaluated. All threads count together, and all streams that a place writes to. A
// place in a template has a limit for each of its instances, one in an inline function one in each
// module.
//
// Seconds are those of the system's performance counter, which costs one reading for a line that
// passes the filter, and no lock. If it ever went back by a second, another would begin; if it
// stood still, one would begin behind 1,048,576 lines that were left out.
//
// OXDIAG_BLOCK(verbosity), OXDIAG_BLOCK_OBJECT(verbosity, object),
// OXDIAG_BLOCK_STATUS(verbosity, object, status): trace the entry here and the exit at the end of
// the enclosing scope, under the name of the enclosing function. `object`: an address, shown at
// entry; nullptr for none. `status`: an i32* or tStatus2*, not a bare nullptr, that outlives the
// scope; what it points to is shown at entry and at exit. `object` may point to something const or
// volatile, such as the `this` of a const member function. Declarations, one on a source line.

#ifndef OXDIAG_TRACE_STRIP

// clang-format off
#define OXDIAG_TRACE(verbosity, ...)                                                             \
  do {                                                                                           \
    OXDIAG_TRACE_SITE(oxdiagSite_);                                                              \
    ::nOXDIAG100::tTrace* const oxdiagTrace_ =                                                   \
        oxdiagSite_.isSomewhere()                                                                \
            ? (OXDIAG_TRACE_STREAM).openLine(oxdiagSite_, verbosity)                             \
            : (OXDIAG_TRACE_STREAM).openLine(OXDIAG_TRACE_ORIGIN, verbosity);                    \
    if (oxdiagTrace_ != nullptr) {                                                               \
      oxdiagTrace_->__VA_ARGS__;                                                                 \
      oxdiagTrace_->endl();                                                                      \
    }                                                                                            \
  } while (false)

#define OXDIAG_TRACE_LIMITED(rule, n, verbosity, ...)                                            \
  do {                                                                                           \
    OXDIAG_TRACE_SITE(oxdiagSite_);                                                              \
    static constinit ::nOXDIAG100::tLineLimit oxdiagLimit_;                                      \
    ::nOXDIAG100::tTrace* const oxdiagTrace_ =                                                   \
        oxdiagSite_.isSomewhere()                                                                \
            ? (OXDIAG_TRACE_STREAM)                                                              \
                  .openLine(oxdiagSite_, verbosity, oxdiagLimit_,                                \
                            ::nOXDIAG100::tLineLimit::rule, n)                                   \
            : (OXDIAG_TRACE_STREAM)                                                              \
                  .openLine(OXDIAG_TRACE_ORIGIN, verbosity, oxdiagLimit_,                        \
                            ::nOXDIAG100::tLineLimit::rule, n);                                  \
    if (oxdiagTrace_ != nullptr) {                                                               \
      oxdiagTrace_->__VA_ARGS__;                                                                 \
      oxdiagTrace_->endl();                                                                      \
    }                                                                                            \
  } while (false)

#define OXDIAG_BLOCK_STATUS(verbosity, object, status)                                           \
  OXDIAG_BLOCK_AT(OXDIAG_TRACE_JOIN(oxdiagSite_, __LINE__),                                      \
                  OXDIAG_TRACE_JOIN(oxdiagBlock_, __LINE__), verbosity, object, status)
#define OXDIAG_BLOCK_AT(site, block, verbosity, object, status)                                  \
  OXDIAG_TRACE_SITE(site);                                                                       \
  ::nOXDIAG100::tSiteBlockTracer const block(                                                    \
      site,                                                                                      \
      *(site.isSomewhere()                                                                       \
            ? &site.getOrigin()                                                                  \
            : &static_cast<::nOXDIAG100::tLineOrigin const&>(OXDIAG_TRACE_ORIGIN)),              \
      verbosity, __func__, static_cast<void const volatile*>(object), status, OXDIAG_TRACE_STREAM)

// What the compiler knows of this place, or the record of nowhere when it does not know all.
#define OXDIAG_TRACE_SITE(name)                                                                  \
  alignas(void*) static constexpr ::nOXDIAG100::tTraceSite name =                                \
      VEX_IS_CONSTANT(static_cast<char const*>(OXDIAG_COMPONENT)[0]) &&                          \
              VEX_IS_CONSTANT((OXDIAG_COMPONENT_VERSION).getPacked()) &&                         \
              VEX_IS_CONSTANT(static_cast<char const*>(OXDIAG_TRACE_FILE)[0])                    \
          ? ::nOXDIAG100::tTraceSite(OXDIAG_TRACE_ORIGIN)                                        \
          : ::nOXDIAG100::tTraceSite()

#define OXDIAG_TRACE_ORIGIN                                                                      \
  ::nOXDIAG100::tLineOrigin{static_cast<char const*>(OXDIAG_COMPONENT),                          \
                            static_cast<char const*>(OXDIAG_TRACE_FILE),                         \
                            OXDIAG_COMPONENT_VERSION, __LINE__}
// clang-format on

#define OXDIAG_TRACE_ONCE(verbosity, ...) OXDIAG_TRACE_LIMITED(kOnce, 1, verbosity, __VA_ARGS__)

#define OXDIAG_TRACE_EVERY(n, verbosity, ...) \
  OXDIAG_TRACE_LIMITED(kEveryNth, n, verbosity, __VA_ARGS__)

#define OXDIAG_TRACE_AT_MOST(n, verbosity, ...) \
  OXDIAG_TRACE_LIMITED(kAtMostASecond, n, verbosity, __VA_ARGS__)

#define OXDIAG_BLOCK_OBJECT(verbosity, object) \
  OXDIAG_BLOCK_STATUS(verbosity, object, static_cast<i32*>(nullptr))

#define OXDIAG_BLOCK(verbosity) OXDIAG_BLOCK_OBJECT(verbosity, nullptr)

#define OXDIAG_TRACE_JOIN(left, right) OXDIAG_TRACE_JOIN_EXPANDED(left, right)
#define OXDIAG_TRACE_JOIN_EXPANDED(left, right) left##right

#else

#define OXDIAG_TRACE(verbosity, ...)     \
  do {                                   \
    if (false) {                         \
      static_cast<void>(verbosity);      \
      (OXDIAG_TRACE_STREAM).__VA_ARGS__; \
    }                                    \
  } while (false)

#define OXDIAG_TRACE_ONCE(verbosity, ...) OXDIAG_TRACE(verbosity, __VA_ARGS__)

#define OXDIAG_TRACE_EVERY(n, verbosity, ...) \
  do {                                        \
    if (false) {                              \
      static_cast<void>(n);                   \
      static_cast<void>(verbosity);           \
      (OXDIAG_TRACE_STREAM).__VA_ARGS__;      \
    }                                         \
  } while (false)

#define OXDIAG_TRACE_AT_MOST(n, verbosity, ...) OXDIAG_TRACE_EVERY(n, verbosity, __VA_ARGS__)

#define OXDIAG_BLOCK_STATUS(verbosity, object, status)              \
  do {                                                              \
    if (false) {                                                    \
      static_cast<void>(verbosity);                                 \
      static_cast<void>(static_cast<void const volatile*>(object)); \
      static_cast<void>(status);                                    \
    }                                                               \
  } while (false)

#define OXDIAG_BLOCK_OBJECT(verbosity, object) OXDIAG_BLOCK_STATUS(verbosity, object, nullptr)

#define OXDIAG_BLOCK(verbosity) OXDIAG_BLOCK_OBJECT(verbosity, nullptr)

#endif
