// The end of the module with many saved configurations: one test, as an image has one life.

#include <gtest/gtest.h>

#include <memory>
#include <string_view>

#include "instructionCount.h"
#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "ntoshost/stack.h"
#include "oxdiagk/module.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "qelmk/module.h"
#include "rounds.h"
#include "support/assertSwitches.h"
#include "support/recordingDestination.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

constexpr u32 kMany = roundsOf(800'000);

u64 printedSwitches = 0;

void countSwitches(void*, char const* text, size_t length) {
  printedSwitches += std::string_view(text, length).starts_with("Switching trace destination");
}

template <class T>
u64 endWith(u32 saved, std::unique_ptr<T> object) {
  for (u32 push = 0; push < saved; ++push) object->pushConfiguration();
  return instructionsOf([&] { object.reset(); });
}

// How many instructions more the end of an object has for a second saved configuration.
template <class T, class... tArguments>
u64 endOfSecond(tArguments&... arguments) {
  u64 const one = endWith(1, std::make_unique<T>(arguments...));
  return endWith(2, std::make_unique<T>(arguments...)) - one;
}

void expectNothingMeasured(tTrace& trace) {
  u64 const measured = instructionsOf([&] { trace.calibrate(); });
  EXPECT_LT(endOfSecond<tPrivateTrace>(tVEXTraceDestination::getInstance()), measured / 2);
}

void expectOneRestored(tAssertConfiguration& contracts) {
  contracts.pushConfiguration();
  u64 const restored = instructionsOf([&] { contracts.popConfiguration(); });
  EXPECT_LT(endOfSecond<tPrivateContracts>(), restored / 2);
}

}  // namespace

TEST(ManySaved, AreGivenBackAtTheEnd) {
  ntoshost::setDebugPrintSink(&countSwitches, nullptr);
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  if (ntoshost::hasKernelStacks()) {  // a sanitizer's own instructions take a minute to count
    expectNothingMeasured(trace);
    expectOneRestored(contracts);
  }
  printedSwitches = 0;
  for (u32 push = 0; push < kMany; ++push) trace.pushConfiguration();
  for (u32 push = 0; push < kMany; ++push) contracts.pushConfiguration();
  EXPECT_EQ(trace.countSavedConfigurations(), kMany);
  EXPECT_EQ(contracts.countSavedConfigurations(), kMany);
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  EXPECT_EQ(printedSwitches, kMany);
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the saved configurations");
  ntoshost::setDebugPrintSink(nullptr, nullptr);
}
