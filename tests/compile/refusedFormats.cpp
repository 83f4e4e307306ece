// Conversions that printf has, and the kernel has not.

#include "vexk/debug.h"
#include "vexk/eventLog.h"

static_assert(!vexFormat::hasForeignConversion(nullptr));
static_assert(!vexFormat::hasForeignConversion("100 %% %-8s|%+5d|% i|%#06X|%o|%p|%c|%.*s|%*u\n"));
static_assert(!vexFormat::hasForeignConversion("%hd %ld %lld %I64u %I32x %Ix %hs %ls %ws %wZ %Z"));
static_assert(!vexFormat::hasForeignConversion("%C %S %hC %lS"));
static_assert(vexFormat::hasForeignConversion("%f") && vexFormat::hasForeignConversion("%5.2e"));
static_assert(vexFormat::hasForeignConversion("%zu") && vexFormat::hasForeignConversion("%jd"));
static_assert(vexFormat::hasForeignConversion("%d %n") && vexFormat::hasForeignConversion("50 %"));
static_assert(vexFormat::hasForeignConversion("%td") && vexFormat::hasForeignConversion("%Lf"));
static_assert(vexFormat::hasForeignConversion("%hhx"));

void print(char const* format, double ratio, unsigned long long size) {
  ssprintf("%s\n", "text");
  ssprintf(nullptr);
  ssprintf("%f\n", ratio);              // expect-error: the kernel does not print such a conversion
  ssprintf("%a\n", ratio);              // expect-error: the kernel does not print such a conversion
  ssprintf("%d %g\n", 1, ratio);        // expect-error: the kernel does not print such a conversion
  ssprintf("%zu\n", sizeof(size));      // expect-error: the kernel does not print such a conversion
  _vexLogEvent("c", "", 0, "%e", 1.0);  // expect-error: the kernel does not print such a conversion
  _vexLogEvent(format, format, 0, "%u", 1u);
}
