// Several threads at the front door.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr auto kLongEnough = std::chrono::seconds(30);
constexpr int kThreadCount = 4;
constexpr int kRounds = 300;

// An object whose configuration takes until it is told to end.
class tSlowConfigurable : public tRecordingConfigurable {
 public:
  void configure() override {
    begun.set_value();
    mayEnd.get_future().wait();
    hasEnded = true;
  }
  using tRecordingConfigurable::configure;

  std::promise<void> begun;
  std::promise<void> mayEnd;
  std::atomic<bool> hasEnded = false;
};

// Counts calls from any thread.
class tCountingConfigurable : public tConfigurable {
 public:
  void configure() override { ++calls; }
  void configure(char const*) override { ++calls; }
  void configure(int, char**) override { ++calls; }
  void inquire(char*, unsigned int, unsigned int* needed) override {
    if (needed != nullptr) *needed = 1;
    ++calls;
  }
  void pushConfiguration() override { ++calls; }
  void popConfiguration() override { ++calls; }

  std::atomic<u64> calls = 0;
};

u32 handleOf(tConfigurable& instance) {
  i32 status = 0;
  return tInstanceRegistry::getInstance().acquire(instance, status);
}

template <class Work>
void runThreads(Work work) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreadCount; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST(RegistryThreads, ASlowConfigurationHoldsUpNobodyElse) {
  tSlowConfigurable slow;
  tRegisteredRecorder other;
  u32 const handle = handleOf(slow);
  std::thread configurer([&] { configure(handle); });
  slow.begun.get_future().wait();
  std::future<void> lookups = std::async(std::launch::async, [&] {
    configure(other.handle, "--a");
    pushConfiguration(handle);
    releaseInstance(acquireInstance(nullptr));
    releaseInstance(handle);
    tTestRequest(other.handle, textRecord("--b")).send();
  });
  EXPECT_EQ(lookups.wait_for(kLongEnough), std::future_status::ready);
  EXPECT_FALSE(slow.hasEnded);
  slow.mayEnd.set_value();
  configurer.join();
  lookups.wait();
  EXPECT_TRUE(slow.hasEnded);
  EXPECT_STREQ(slow.calls(), "push ");
  EXPECT_STREQ(other.calls(), "configure(--a) configure(--b) ");
}

TEST(RegistryThreads, EveryThreadGetsHandlesOfItsOwn) {
  std::mutex mutex;
  std::set<u32> handles;
  runThreads([&](int) {
    for (int round = 0; round < kRounds; ++round) {
      u32 const handle = acquireInstance(nullptr);
      std::lock_guard const lock(mutex);
      EXPECT_TRUE(handles.insert(handle).second);
    }
  });
  EXPECT_EQ(handles.size(), size_t{kThreadCount * kRounds});
  EXPECT_EQ(handles.count(kNoHandle), 0u);
  for (u32 handle : handles) releaseInstance(handle);
}

TEST(RegistryThreads, AHandleServesItsThreadWhileOthersComeAndGo) {
  tCountingConfigurable objects[kThreadCount];
  runThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      u32 const handle = handleOf(objects[thread]);
      configure(handle);
      configure(handle, "--a");
      configure(handle, 0, nullptr);
      pushConfiguration(handle);
      inquire(handle, nullptr, 0, nullptr);
      popConfiguration(handle);
      releaseInstance(handle);
      configure(handle);
    }
  });
  for (tCountingConfigurable& object : objects) EXPECT_EQ(object.calls, 6u * kRounds);
}

TEST(RegistryThreads, RequestsRunOnAnyThread) {
  tCountingConfigurable objects[kThreadCount];
  runThreads([&](int thread) {
    u32 const handle = handleOf(objects[thread]);
    for (int round = 0; round < kRounds; ++round) {
      u32 acquired = kNoHandle;
      u32 needed = 0;
      tTestRequest(handle, makeRecord(3), textRecord("--a"), inquireRecord(nullptr, 0, &needed),
                   acquireRecord(&acquired, "assert"))
          .send();
      EXPECT_EQ(needed, 1u);
      EXPECT_NE(acquired, kNoHandle);
      tTestRequest(acquired, makeRecord(2)).send();
    }
    releaseInstance(handle);
  });
  for (tCountingConfigurable& object : objects) EXPECT_EQ(object.calls, 3u * kRounds);
}
