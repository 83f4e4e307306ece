// Lines with a limit, wherever a line may stand.

#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0)
#include "oxdiagk/traceMacros.h"

inline void traceInline(u32 limit) {
  OXDIAG_TRACE_EVERY(limit, 100, put("x"));
}

template <class tNumber>
struct tTracer {
  void trace(tNumber number) const {
    OXDIAG_TRACE_ONCE(100, put(number, 10).putf("%u, %u", 1u, 2u));
    auto const later = [=](u32 n) { OXDIAG_TRACE_AT_MOST(n, 100, put(number, 10)); };
    later(3);
  }
  static tNumber first(tNumber number) noexcept {
    if (number > 1)
      OXDIAG_TRACE_ONCE(100, put("large"));
    else
      OXDIAG_TRACE_EVERY(7, 100, put("small"));
    return number;
  }
};

namespace nClient {

// Of the names that the library has, none has to be free.
struct tTrace {};
struct tLineLimit {};
struct nOXDIAG {};

void trace(u32 kOnce, u32 rule, u32 verbosity) {
  OXDIAG_TRACE_ONCE(verbosity, put(kOnce, 10));
  OXDIAG_TRACE_AT_MOST(rule, verbosity, put(rule, 10));
}

}  // namespace nClient

void useAll() {
  traceInline(2);
  tTracer<u32>().trace(tTracer<u32>::first(1));
  tTracer<unsigned long long>().trace(2);
  nClient::trace(1, 2, 3);
}
