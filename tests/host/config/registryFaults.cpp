// The registry with exhausted memory, and above the IRQL of locks.

#include "config/tInstanceRegistry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "ntos/irql.h"
#include "oxdiagk/statusCodes.h"
#include "support/tRecordingConfigurable.h"
#include "trace/startedModules.h"
#include "trace/tRaisedIrql.h"

namespace {

using namespace nOXDIAG100;

// Fallible calls of an acquisition, in order.
constexpr u64 kTableCall = 1;
constexpr u64 kListCall = 2;

// Every function has no effect but to tell `wanted`.
void expectUnusable(tInstanceRegistry& registry, i32 wanted) {
  tRecordingConfigurable instance;
  u64 const before = ntoshost::outstandingBlocks();
  EXPECT_EQ(registry.getConstructionStatus(), wanted);
  i32 status = 0;
  EXPECT_EQ(registry.acquire(instance, status), kNoHandle);
  EXPECT_EQ(status, wanted);
  EXPECT_EQ(registry.release(kFirstHandle), wanted);
  status = 0;
  EXPECT_TRUE(registry.find(kFirstHandle, status) == nullptr);
  EXPECT_EQ(status, wanted);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

u32 acquireFrom(tInstanceRegistry& registry, tConfigurable& instance) {
  i32 status = 0;
  u32 const handle = registry.acquire(instance, status);
  EXPECT_EQ(status, 0);
  return handle;
}

}  // namespace

TEST(RegistryFaults, WhatCannotBeBuiltIsUnusable) {
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [](u64) {
    tInstanceRegistry registry;
    ntoshost::clearFaults();
    if (ntoshost::faultsInjected() != 0) expectUnusable(registry, kStatusOutOfMemory);
  });
  EXPECT_GE(failures, 2u);  // the lock and the ring
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(RegistryFaults, WithoutAnyMemoryTheRegistryIsUnusable) {
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tInstanceRegistry registry;
  ntoshost::clearFaults();
  expectUnusable(registry, kStatusOutOfMemory);
}

TEST(RegistryFaults, AnAcquisitionWithoutMemoryLeavesNothing) {
  for (u64 call : {kTableCall, kListCall}) {
    tInstanceRegistry registry;
    tRecordingConfigurable instance;
    u64 const before = ntoshost::outstandingBlocks();
    ntoshost::failNth(ntoshost::kFaultMemory, call);
    i32 status = 0;
    EXPECT_EQ(registry.acquire(instance, status), kNoHandle);
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u);
    EXPECT_EQ(status, -50352);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
    EXPECT_TRUE(registry.find(kFirstHandle, status) == nullptr);
    EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + 1);
  }
}

TEST(RegistryFaults, AnAcquisitionMakesTwoAllocationsAndTheRestNone) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  ntoshost::watchCalls(ntoshost::kFaultAll);
  u32 const handle = acquireFrom(registry, instance);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), kListCall);
  ntoshost::failFrom(ntoshost::kFaultAll, 1);
  i32 status = 0;
  EXPECT_TRUE(registry.find(handle, status) == &instance);
  EXPECT_EQ(registry.release(handle), 0);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  ntoshost::clearFaults();
}

TEST(RegistryFaults, AReleaseFreesWhatTheHandleTook) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  u64 const before = ntoshost::outstandingBlocks();
  u32 const handle = acquireFrom(registry, instance);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before + kListCall);
  EXPECT_EQ(registry.release(handle), 0);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(RegistryFaults, HandlesGivenBackInAnyOrderFreeWhatTheyTookAndTheOthersStay) {
  constexpr u32 kCount = 2000;
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  u64 const before = ntoshost::outstandingBlocks();
  std::vector<u32> handles;
  for (u32 index = 0; index < kCount; ++index) handles.push_back(acquireFrom(registry, instance));
  std::shuffle(handles.begin(), handles.end(), std::mt19937(20261122));
  for (u32 out = kCount; out != 0; --out, handles.pop_back()) {
    EXPECT_EQ(registry.release(handles.back()), 0);
    EXPECT_EQ(registry.release(handles.back()), kStatusUnknownHandle);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before + kListCall * (out - 1));
    i32 status = 0;
    EXPECT_TRUE(out == 1 || registry.find(handles[out / 2 - 1], status) == &instance);
  }
}

TEST(RegistryFaults, DestructionFreesTheHandlesThatAreStillOut) {
  u64 const before = ntoshost::outstandingBlocks();
  {
    tInstanceRegistry registry;
    tRecordingConfigurable instance;
    for (int index = 0; index < 100; ++index) acquireFrom(registry, instance);
  }
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(RegistryFaults, AboveTheIrqlOfLocksNothingHappens) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  u32 const handle = acquireFrom(registry, instance);
  i32 status = 0;
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    EXPECT_EQ(registry.acquire(instance, status), kNoHandle);
    EXPECT_EQ(status, kStatusSyncIrqlTooHigh);
    EXPECT_EQ(registry.release(handle), kStatusSyncIrqlTooHigh);
    status = 0;
    EXPECT_TRUE(registry.find(handle, status) == nullptr);
    EXPECT_EQ(status, kStatusSyncIrqlTooHigh);
  }
  EXPECT_TRUE(registry.find(handle, status) == &instance);
  EXPECT_EQ(acquireFrom(registry, instance), handle + 1);
}
