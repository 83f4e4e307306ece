// The class registry between threads.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "qelmk/qelmk.h"
#include "runningFramework.h"

namespace {

using nQELM100::tClass;
using nQELM100::tClassImplementation;

constexpr u32 kThreads = 4;
constexpr u32 kRounds = 300;
constexpr u32 kNames = 16;

template <class Work>
void inThreads(Work work) {
  std::vector<std::thread> threads;
  for (u32 number = 0; number < kThreads; ++number) threads.emplace_back(work, number);
  for (std::thread& thread : threads) thread.join();
}

bool isFound(std::string const& name) {
  i32 status = 0;
  return tClass::forName(name.c_str(), status).isValid();
}

}  // namespace

TEST(QelmkRegistryThreads, EachThreadFindsItsClassesWhileOthersComeAndGo) {
  tRunningFramework const framework;
  inThreads([](u32 number) {
    std::vector<std::string> names;
    std::vector<std::unique_ptr<tClassImplementation>> records;
    for (u32 index = 0; index < kNames; ++index) {
      names.push_back("tThread" + std::to_string(number) + "Class" + std::to_string(index));
    }
    for (std::string const& name : names) {
      records.push_back(std::make_unique<tClassImplementation>(name.c_str(), nullptr, nullptr));
    }
    for (u32 round = 0; round < kRounds; ++round) {
      i32 status = 0;
      for (auto const& record : records) nQELM100::registerClass(*record, status);
      EXPECT_EQ(0, status);
      for (std::string const& name : names) EXPECT_TRUE(isFound(name));
      for (auto const& record : records) nQELM100::unregisterClass(*record);
      EXPECT_FALSE(isFound(names[round % kNames]));
    }
  });
}

TEST(QelmkRegistryThreads, OfManyRecordsWithOneNameOneIsRegistered) {
  tRunningFramework const framework;
  std::vector<std::unique_ptr<tClassImplementation>> records;
  for (u32 number = 0; number < kThreads; ++number) {
    records.push_back(std::make_unique<tClassImplementation>("tWanted", nullptr, nullptr));
  }
  for (u32 round = 0; round < kRounds; ++round) {
    i32 statuses[kThreads] = {};
    inThreads([&](u32 number) { nQELM100::registerClass(*records[number], statuses[number]); });
    u32 winners = 0;
    for (i32 const status : statuses) winners += status == 0 ? 1 : 0;
    EXPECT_EQ(1u, winners);
    for (auto const& record : records) nQELM100::unregisterClass(*record);
    EXPECT_FALSE(isFound("tWanted"));
  }
}

TEST(QelmkRegistryThreads, RegistrationsOfOneRecordAreCounted) {
  tRunningFramework const framework;
  tClassImplementation record("tShared", nullptr, nullptr);
  inThreads([&](u32) {
    for (u32 round = 0; round < kRounds; ++round) {
      i32 status = 0;
      nQELM100::registerClass(record, status);
      EXPECT_EQ(0, status);
      EXPECT_TRUE(isFound("tShared"));
      nQELM100::unregisterClass(record);
    }
  });
  EXPECT_FALSE(isFound("tShared"));
}
