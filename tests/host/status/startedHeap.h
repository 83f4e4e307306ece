#pragma once

// The status heap, and what stands below it, for the length of a test.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "ntoshost/executive.h"
#include "qelmk/module.h"
#include "status/statusHeapMain.h"
#include "support/heapRecord.h"
#include "vexk/module.h"

constexpr u32 kStart = 0;
constexpr u32 kStop = 1;

// Everything below the heap; at the end nothing may be left in the pool.
class tStartedPlatform {
 public:
  tStartedPlatform() {
    vexkInitialize();
    qelmkInitialize();
  }
  ~tStartedPlatform() {
    ntoshost::clearFaults();
    qelmkUnload();
    vexkUnload();
    ntoshost::requireNoOutstanding("the test");
  }
  tStartedPlatform(tStartedPlatform const&) = delete;
  tStartedPlatform& operator=(tStartedPlatform const&) = delete;
};

class tStartedHeap {
 public:
  tStartedHeap() { EXPECT_EQ(nOXDIAG100::statusHeapMain(kStart), 0); }
  ~tStartedHeap() {
    ntoshost::clearFaults();
    EXPECT_EQ(nOXDIAG100::statusHeapMain(kStop), 0);
  }
  tStartedHeap(tStartedHeap const&) = delete;
  tStartedHeap& operator=(tStartedHeap const&) = delete;

 private:
  tStartedPlatform platform;
};

inline nOXDIAG100::tStatus2Heap* findHeap() {
  i32 status = 0;
  return nOXDIAG100::tStatus2Heap::getHeap(status);
}

class tRaisedIrql {
 public:
  explicit tRaisedIrql(KIRQL level) { KeRaiseIrql(level, &previous); }
  ~tRaisedIrql() { KeLowerIrql(previous); }
  tRaisedIrql(tRaisedIrql const&) = delete;
  tRaisedIrql& operator=(tRaisedIrql const&) = delete;

 private:
  KIRQL previous;
};
