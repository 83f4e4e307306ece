// The stream of the module before, during and after the module's life: one test, as an image has
// one life.

#include <gtest/gtest.h>

#include "capturedPrint.h"
#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tLineLimit;
using nOXDIAG100::tLineOrigin;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceSite;
using nOXDIAG100::tVEXTraceDestination;

void putLine() {
  tTrace& trace = tTrace::getInstance();
  trace.putPrefix("life", tSSVersion(), 7, "a/life.cpp", 100, tTrace::kTraceLine);
  trace.put("x").put(5, 10).put(&trace, 4, 1).put("y", 1).endl();
}

// Opens lines in each way, and a switch; nothing of that is to be found in the stream.
void expectAtRest(tTrace& trace) {
  static constexpr tLineOrigin kOrigin{"life", "a/life.cpp", tSSVersion(), 1};
  static constexpr tTraceSite site(kOrigin);
  auto const* const bytes = reinterpret_cast<unsigned char const*>(&trace);
  std::vector<unsigned char> const known(bytes, bytes + sizeof(trace));
  tLineLimit limit;
  trace.putPrefix("life", tSSVersion(), 7, "a/life.cpp", 100, tTrace::kBlockEntry);
  EXPECT_EQ(trace.openLine(site, 100, tTrace::kBlockEntry), nullptr);
  EXPECT_EQ(trace.openLine(kOrigin, 100, tTrace::kBlockEntry), nullptr);
  EXPECT_EQ(trace.openLine(kOrigin, 100, limit, tLineLimit::kOnce, 1), nullptr);
  EXPECT_EQ(trace.setDestination(tVEXTraceDestination::getInstance()), nullptr);
  trace.enableMutex();
  EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + sizeof(trace)), known);
}

}  // namespace

TEST(TraceStreamLife, StreamPrintsWhileTheModuleIsLoadedAndDropsTextOtherwise) {
  tCapturedPrint captured;
  tTrace& before = tTrace::getInstance();
  EXPECT_EQ(before.isEnabled(), 0u);
  before.put("dropped").put(1, 10).endl();
  expectAtRest(before);
  EXPECT_EQ(captured.text(), "");

  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  EXPECT_EQ(&tTrace::getInstance(), &before);
  captured.prints.clear();
  putLine();
  ASSERT_EQ(captured.prints.size(), 2u);
  EXPECT_EQ(captured.prints[0].find("[life--7--life.cpp--"), 0u);
  EXPECT_EQ(captured.prints[1], "y\n");

  tTrace::getInstance().enableMutex();
  tTrace::getInstance().pushConfiguration();
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  captured.prints.clear();
  EXPECT_EQ(tTrace::getInstance().isEnabled(), 0u);
  tTrace::getInstance().put("dropped").put(1, 10).endl();
  expectAtRest(tTrace::getInstance());
  EXPECT_EQ(captured.text(), "");
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the trace stream");
}
