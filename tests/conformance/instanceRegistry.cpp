// Configuration by name and handle.

#include "oxdiagk/instanceRegistry.h"

#include "conformance/harness.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "support/tRecordingConfigurable.h"
#include "support/tTexts.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kNameCapacity = 64;

u32 acquireNamed(char const* name) {
  char copy[kNameCapacity] = {};
  __builtin_memcpy(copy, name, __builtin_strlen(name));
  u32 const handle = acquireInstance(copy);
  EXPECT_STREQ(copy, name);
  return handle;
}

// What a name means, as the registry itself has it.
tConfigurable* meaningOf(u32 handle) {
  i32 status = 0;
  tConfigurable* const found = tInstanceRegistry::getInstance().find(handle, status);
  releaseInstance(handle);
  return found;
}

tConfigurable* trace() {
  return &tTrace::getInstance();
}

tConfigurable* contracts() {
  return &tAssertConfiguration::getInstance();
}

bool checksAreOn() {
  return tAssertConfiguration::getInstance().checksAreEnabled("default");
}

}  // namespace

TEST(InstanceHandles, TraceNamesTheTraceStream) {
  for (char const* name : tTexts{"trace", "kerneltrace", "kernel/trace", "tracer", "trace/assert",
                                 "kernel/trace of mine", "traceassert"}) {
    EXPECT_TRUE(meaningOf(acquireNamed(name)) == trace());
  }
}

TEST(InstanceHandles, AssertNamesTheAssertionConfiguration) {
  for (char const* name : tTexts{"assert", "kernelassert", "kernel/assert", "assertion",
                                 "kernel/asserts", "asserttrace"}) {
    EXPECT_TRUE(meaningOf(acquireNamed(name)) == contracts());
  }
}

TEST(InstanceHandles, ANullNameMeansTheTraceStream) {
  EXPECT_TRUE(meaningOf(acquireInstance(nullptr)) == trace());
}

TEST(InstanceHandles, OtherNamesMeanNothing) {
  for (char const* name :
       tTexts{"",        "kernel",        "kernel/",           "/trace",
              "/assert", "kernel//trace", "kernelkerneltrace", "kernel/kernel/trace",
              "Trace",   "TRACE",         "Kernel/trace",      "trac",
              "asser",   "kerne",         "kernel/trac",       "kernel/asser",
              " trace",  "kernel trace",  "kernel\\trace",     "heap"}) {
    EXPECT_EQ(acquireNamed(name), kNoHandle);
  }
}

TEST(InstanceHandles, ACallIssuesTheNextNumber) {
  u32 const first = acquireInstance(nullptr);
  u32 const second = acquireNamed("trace");
  u32 const third = acquireNamed("assert");
  EXPECT_GE(first, kFirstHandle);
  EXPECT_LE(third, kLastHandle);
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(third, second + 1);
  u32 const handles[] = {first, second, third};
  for (u32 handle : handles) releaseInstance(handle);
}

TEST(InstanceHandles, EachOperationReachesTheObjectWithItsArguments) {
  tRegisteredRecorder recorder;
  char first[] = "--a";
  char second[] = "b";
  char* words[] = {first, second};
  configure(recorder.handle);
  configure(recorder.handle, "--checks off");
  configure(recorder.handle, 2, words);
  pushConfiguration(recorder.handle);
  popConfiguration(recorder.handle);
  inquire(recorder.handle, nullptr, 0, nullptr);
  EXPECT_STREQ(recorder.calls(), "default configure(--checks off) words(--a|b) push pop measure ");
}

TEST(InstanceHandles, NullArgumentsReachTheObject) {
  tRegisteredRecorder recorder;
  configure(recorder.handle, static_cast<char const*>(nullptr));
  configure(recorder.handle, 0, nullptr);
  inquire(recorder.handle, nullptr, 7, nullptr);
  EXPECT_STREQ(recorder.calls(), "configure(null) words() measure ");
  EXPECT_EQ(recorder.lastSize, 7u);
}

TEST(InstanceHandles, NullOptionsAreAnEmptyText) {
  u32 const handle = acquireNamed("assert");
  bool const before = checksAreOn();
  configure(handle, static_cast<char const*>(nullptr));
  configure(handle, 0, nullptr);
  EXPECT_EQ(checksAreOn(), before);
  releaseInstance(handle);
}

TEST(InstanceHandles, InquireFillsTheBufferAndTellsTheNeededSize) {
  tRegisteredRecorder recorder;
  char buffer[8];
  unsigned int needed = 0;
  inquire(recorder.handle, buffer, sizeof(buffer), &needed);
  EXPECT_STREQ(buffer, " --reco");
  EXPECT_EQ(needed, 15u);
  EXPECT_EQ(recorder.lastSize, 8u);
}

TEST(InstanceHandles, EveryHandleOfAnObjectWorksUntilItIsReleased) {
  tRegisteredRecorder recorder;
  i32 status = 0;
  u32 const other = tInstanceRegistry::getInstance().acquire(recorder, status);
  configure(other, "1");
  releaseInstance(other);
  configure(other, "2");
  configure(recorder.handle, "3");
  EXPECT_STREQ(recorder.calls(), "configure(1) configure(3) ");
}

TEST(InstanceHandles, WithoutAHandleNothingHappens) {
  tRegisteredRecorder recorder;
  char buffer[] = "untouched";
  u32 const handles[] = {kNoHandle, 1, recorder.handle + 1, kLastHandle, kLastHandle + 1, ~0u};
  for (u32 handle : handles) {
    unsigned int needed = 77;
    configure(handle);
    configure(handle, "--checks off");
    configure(handle, 0, nullptr);
    pushConfiguration(handle);
    popConfiguration(handle);
    inquire(handle, buffer, sizeof(buffer), &needed);
    releaseInstance(handle);
    EXPECT_EQ(needed, 77u);
  }
  EXPECT_STREQ(recorder.calls(), "");
  EXPECT_STREQ(buffer, "untouched");
}

TEST(InstanceHandles, AReleasedHandleConfiguresNothing) {
  u32 const handle = acquireNamed("assert");
  pushConfiguration(handle);
  char option[] = "--checks";
  char value[] = "off";
  char* words[] = {option, value};
  u32 const released = acquireNamed("assert");
  configure(handle, "--category default --checks on");
  releaseInstance(released);
  configure(released, 2, words);
  configure(released, "--checks off");
  EXPECT_TRUE(checksAreOn());
  configure(handle, 2, words);
  EXPECT_FALSE(checksAreOn());
  popConfiguration(handle);
  EXPECT_TRUE(checksAreOn());
  releaseInstance(handle);
}

TEST(InstanceHandles, ReleasingAgainDoesNothing) {
  tRegisteredRecorder recorder;
  u32 const handle = acquireInstance(nullptr);
  releaseInstance(handle);
  releaseInstance(handle);
  configure(recorder.handle);
  EXPECT_STREQ(recorder.calls(), "default ");
}

TEST(InstanceHandles, TheTraceStreamIsConfiguredSavedAndRestored) {
  u32 const handle = acquireNamed("kernel/trace");
  tTrace& stream = tTrace::getInstance();
  u32 const before = stream.timeStampIsEnabled();
  pushConfiguration(handle);
  configure(handle, before != 0 ? "--timestamp off" : "--timestamp on");
  EXPECT_NE(stream.timeStampIsEnabled(), before);
  popConfiguration(handle);
  EXPECT_EQ(stream.timeStampIsEnabled(), before);
  releaseInstance(handle);
}
