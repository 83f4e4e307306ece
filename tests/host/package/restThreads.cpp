// The library at rest, in the hands of several threads.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "config/tConfigTunnel.h"
#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tTraceSite.h"
#include "package/everyOperation.h"
#include "qelmk/module.h"
#include "vexk/module.h"

namespace {

using namespace nOXDIAG100;

constexpr int kThreads = 4;
constexpr int kRounds = 200;
constexpr tSSVersion kVersion;

// What many threads may do at once, whatever the library's state.
void configureAndWrite() {
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  char text[64];
  for (int round = 0; round < kRounds; ++round) {
    trace.configure("--on --timestamp on --mutex on");
    trace.inquire(text, sizeof(text), nullptr);
    trace.enable();
    trace.calibrate();
    trace.putPrefix("test", kVersion, 1, "file", 200, tTrace::kTraceLine).put("line").endl();
    contracts.configure("--category rack --checks on");
    EXPECT_FALSE(contracts.checksAreEnabled("rack"));
    EXPECT_EQ(acquireInstance(nullptr), kNoHandle);
  }
}

void useTheRestingLibrary() {
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) threads.emplace_back(configureAndWrite);
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(isLibraryAtRest());
  EXPECT_EQ(ntoshost::outstandingBlocks(), 0u);
}

}  // namespace

TEST(RestThreads, ThoseThatUseTheLibraryBeforeAndBetweenAndAfterItsLivesDoNothing) {
  useTheRestingLibrary();
  for (int life = 0; life < 3; ++life) {
    ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
    ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
    ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
    EXPECT_TRUE(isLibraryWorking());
    oxdiagkUnload();
    useTheRestingLibrary();
    qelmkUnload();
    vexkUnload();
    useTheRestingLibrary();
  }
}

TEST(RestThreads, OpensNoLineAndServesNoRequest) {
  tTraceSite const site(tLineOrigin{"test", "file", kVersion, 1});
  tTrace& trace = tTrace::getInstance();
  tLineLimit limit;
  EXPECT_EQ(trace.openLine(site, 200, tTrace::kTraceLine), nullptr);
  EXPECT_EQ(trace.openLine(tLineOrigin(site), 200, limit, tLineLimit::kOnce, 1), nullptr);
  tConfigTunnel::getInstance().dispatch(0);
  EXPECT_TRUE(isLibraryAtRest());
}
