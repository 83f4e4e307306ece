// The macros of a component that has them compiled away.

#include "conformance/harness.h"
#include "support/prefixedStream.h"

namespace {

constinit u32 streamUses = 0;

nOXDIAG100::tTrace& useStream() {
  ++streamUses;
  return nOXDIAG100::tTrace::getInstance();
}

}  // namespace

#define OXDIAG_TRACE_STRIP
#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion()
#define OXDIAG_TRACE_STREAM useStream()
#include "oxdiagk/traceMacros.h"

namespace {

u32 countUp(u32& counter) {
  return ++counter;
}

}  // namespace

TEST(TraceMacrosStripped, ATraceEvaluatesNothing) {
  streamUses = 0;
  u32 uses = 0;
  OXDIAG_TRACE(countUp(uses), put(countUp(uses), 10).put("x"));
  EXPECT_EQ(u32{0}, uses);
  EXPECT_EQ(u32{0}, streamUses);
}

TEST(TraceMacrosStripped, ALimitedTraceEvaluatesNothing) {
  streamUses = 0;
  u32 uses = 0;
  OXDIAG_TRACE_ONCE(countUp(uses), put(countUp(uses), 10).put("x"));
  OXDIAG_TRACE_EVERY(countUp(uses), countUp(uses), put(countUp(uses), 10).put("x"));
  OXDIAG_TRACE_AT_MOST(countUp(uses), countUp(uses), put(countUp(uses), 10).put("x"));
  EXPECT_EQ(u32{0}, uses);
  EXPECT_EQ(u32{0}, streamUses);
}

TEST(TraceMacrosStripped, ABlockEvaluatesNothing) {
  streamUses = 0;
  u32 uses = 0;
  i32 status = 0;
  i32 const before = nOXDIAG100::tTrace::getInstance().getNestingLevel();
  OXDIAG_BLOCK(countUp(uses));
  OXDIAG_BLOCK_OBJECT(countUp(uses), &uses + countUp(uses));
  OXDIAG_BLOCK_STATUS(countUp(uses), nullptr, &status + countUp(uses));
  EXPECT_EQ(u32{0}, uses);
  EXPECT_EQ(u32{0}, streamUses);
  EXPECT_EQ(before, nOXDIAG100::tTrace::getInstance().getNestingLevel());
}

TEST(TraceMacrosStripped, ATraceIsStillOneStatement) {
  u32 others = 0;
  for (u32 count = 0; count < 3; ++count)
    if (count == 1)
      OXDIAG_TRACE(100, put("one"));
    else
      ++others;
  EXPECT_EQ(u32{2}, others);
}

TEST(TraceMacrosStripped, ALimitedTraceIsStillOneStatement) {
  u32 others = 0;
  for (u32 count = 0; count < 4; ++count)
    if (count == 1)
      OXDIAG_TRACE_ONCE(100, put("one"));
    else if (count == 2)
      OXDIAG_TRACE_EVERY(2, 100, put("two"));
    else if (count == 3)
      OXDIAG_TRACE_AT_MOST(3, 100, put("three"));
    else
      ++others;
  EXPECT_EQ(u32{1}, others);
}
