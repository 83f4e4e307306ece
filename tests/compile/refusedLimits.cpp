// Limits where there can be none, and limited lines that are compiled away but have to be code.

#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion()
#define OXDIAG_TRACE_STRIP
#include "oxdiagk/traceMacros.h"

void traceNothing(u32 n) {
  OXDIAG_TRACE_ONCE(100, put("x"));
  OXDIAG_TRACE_ONCE(100, putt("x"));           // expect-error: no member named 'putt'
  OXDIAG_TRACE_EVERY(n, 100, putt("x"));       // expect-error: no member named 'putt'
  OXDIAG_TRACE_AT_MOST(limit, 100, put("x"));  // expect-error: undeclared identifier 'limit'
  OXDIAG_TRACE_EVERY(n, verbosity, put("x"));  // expect-error: undeclared identifier 'verbosity'
}

void copy(nOXDIAG100::tLineLimit const& limit) {
  nOXDIAG100::tLineLimit const other(limit);  // expect-error: deleted constructor
}
