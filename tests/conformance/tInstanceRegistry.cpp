// Which numbers a registry issues, and for how long they stand for their object.

#include "config/tInstanceRegistry.h"

#include "conformance/harness.h"
#include "oxdiagk/statusCodes.h"
#include "support/tRecordingConfigurable.h"

namespace {

using nOXDIAG100::kFirstHandle;
using nOXDIAG100::kLastHandle;
using nOXDIAG100::kNoHandle;
using nOXDIAG100::kStatusNoFreeHandle;
using nOXDIAG100::kStatusUnknownHandle;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tHandleRange;
using nOXDIAG100::tInstanceRegistry;
using nOXDIAG100::tReleasedHandles;

constexpr u32 kRing = 15;

// The end of the range, so that a few handles reach the wrap.
constexpr tHandleRange endingWith(u32 count) {
  return {kFirstHandle, kLastHandle, kLastHandle - count + 1};
}

// A range of so few numbers that they run out.
constexpr tHandleRange rangeOf(u32 count) {
  return {kFirstHandle, kFirstHandle + count - 1, kFirstHandle};
}

u32 acquireFrom(tInstanceRegistry& registry, tConfigurable& instance) {
  i32 status = 0;
  u32 const handle = registry.acquire(instance, status);
  EXPECT_EQ(status, 0);
  return handle;
}

i32 acquiringFails(tInstanceRegistry& registry, tConfigurable& instance) {
  i32 status = 0;
  EXPECT_EQ(registry.acquire(instance, status), kNoHandle);
  return status;
}

// Acquires and releases one handle after the other, so that each stands in the ring.
void acquireAndRelease(tInstanceRegistry& registry, tConfigurable& instance, u32 count) {
  for (u32 index = 0; index < count; ++index) {
    EXPECT_EQ(registry.release(acquireFrom(registry, instance)), 0);
  }
}

}  // namespace

TEST(InstanceRegistry, TheBoundsAreAsDocumented) {
  EXPECT_EQ(kFirstHandle, 0xC0000000u);
  EXPECT_EQ(kLastHandle, 0xCFFFFFFEu);
  EXPECT_EQ(kStatusUnknownHandle, -50020);
  EXPECT_EQ(kStatusNoFreeHandle, -50150);
  EXPECT_EQ(tReleasedHandles::kSlots, size_t{kRing});
}

TEST(InstanceRegistry, IssuesRisingNumbersFromTheFirstOn) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  EXPECT_EQ(registry.getConstructionStatus(), 0);
  for (u32 index = 0; index < 100; ++index) {
    EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + index);
  }
}

TEST(InstanceRegistry, FindsTheObjectOfEachHandle) {
  tInstanceRegistry registry;
  tRecordingConfigurable first;
  tRecordingConfigurable second;
  u32 const handles[] = {acquireFrom(registry, first), acquireFrom(registry, second),
                         acquireFrom(registry, first)};
  i32 status = 0;
  EXPECT_TRUE(registry.find(handles[0], status) == &first);
  EXPECT_TRUE(registry.find(handles[1], status) == &second);
  EXPECT_TRUE(registry.find(handles[2], status) == &first);
  EXPECT_EQ(status, 0);
}

TEST(InstanceRegistry, ANumberThatIsNoHandleIsUnknown) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  u32 const handle = acquireFrom(registry, instance);
  u32 const numbers[] = {0, 1, handle - 1, handle + 1, kLastHandle, 0xCFFFFFFF, 0xFFFFFFFF};
  for (u32 number : numbers) {
    i32 status = 0;
    EXPECT_TRUE(registry.find(number, status) == nullptr);
    EXPECT_EQ(status, -50020);
    EXPECT_EQ(registry.release(number), -50020);
  }
  i32 status = 0;
  EXPECT_TRUE(registry.find(handle, status) == &instance);
}

TEST(InstanceRegistry, AReleasedHandleIsUnknownAndTheOthersStay) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  u32 const handles[] = {acquireFrom(registry, instance), acquireFrom(registry, instance),
                         acquireFrom(registry, instance)};
  EXPECT_EQ(registry.release(handles[1]), 0);
  EXPECT_EQ(registry.release(handles[1]), -50020);
  i32 status = 0;
  EXPECT_TRUE(registry.find(handles[1], status) == nullptr);
  EXPECT_EQ(status, -50020);
  EXPECT_TRUE(registry.find(handles[0], status) == &instance);
  EXPECT_TRUE(registry.find(handles[2], status) == &instance);
}

TEST(InstanceRegistry, AReleasedHandleIsNotIssuedNextBeforeTheWrap) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  EXPECT_EQ(registry.release(acquireFrom(registry, instance)), 0);
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + 1);
}

TEST(InstanceRegistry, IssuesTheLastNumberAndThenTheFirst) {
  tInstanceRegistry registry(endingWith(2));
  tRecordingConfigurable instance;
  EXPECT_EQ(acquireFrom(registry, instance), 0xCFFFFFFDu);
  EXPECT_EQ(acquireFrom(registry, instance), 0xCFFFFFFEu);
  EXPECT_EQ(acquireFrom(registry, instance), 0xC0000000u);
  EXPECT_EQ(acquireFrom(registry, instance), 0xC0000001u);
}

TEST(InstanceRegistry, AfterTheWrapHandlesInUseAndThoseReleasedJustNowArePassedOver) {
  tInstanceRegistry registry(rangeOf(kRing + 3));
  tRecordingConfigurable instance;
  tRecordingConfigurable other;
  EXPECT_EQ(acquireFrom(registry, other), kFirstHandle);
  acquireAndRelease(registry, instance, kRing + 2);
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + 1);  // released, but 17 handles ago
  i32 status = 0;
  EXPECT_TRUE(registry.find(kFirstHandle, status) == &other);
}

TEST(InstanceRegistry, ASearchThatReachesTheEndGoesOnAtTheFirstNumber) {
  constexpr u32 kCount = kRing + 5;
  tInstanceRegistry registry(rangeOf(kCount));
  tRecordingConfigurable instance;
  for (u32 index = 0; index < kCount; ++index) acquireFrom(registry, instance);
  for (u32 index = 0; index < kCount - 1; ++index) registry.release(kFirstHandle + index);
  acquireAndRelease(registry, instance, kCount - 1);
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle);  // the last number is still in use
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + 1);
}

TEST(InstanceRegistry, BeforeTheWrapTheRingIsNotAsked) {
  tInstanceRegistry registry(rangeOf(3));
  tRecordingConfigurable instance;
  acquireAndRelease(registry, instance, 2);
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle + 2);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
}

TEST(InstanceRegistry, AfterTheWrapNoneOfTheLastFifteenReleasedIsIssued) {
  tInstanceRegistry registry(rangeOf(kRing + 1));
  tRecordingConfigurable instance;
  acquireAndRelease(registry, instance, kRing + 1);  // the first one has left the ring again
  for (u32 index = 0; index < 3 * (kRing + 1); ++index) {
    u32 const handle = acquireFrom(registry, instance);
    EXPECT_EQ(handle, kFirstHandle + index % (kRing + 1));
    EXPECT_EQ(registry.release(handle), 0);
  }
}

TEST(InstanceRegistry, WithFifteenReleasedAndNoOtherThereIsNoHandle) {
  tInstanceRegistry registry(rangeOf(kRing));
  tRecordingConfigurable instance;
  acquireAndRelease(registry, instance, kRing);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
}

TEST(InstanceRegistry, TheRingForgetsTheOneReleasedLongestAgo) {
  tInstanceRegistry registry(rangeOf(kRing + 1));
  tRecordingConfigurable instance;
  u32 handles[kRing + 1];
  for (u32& handle : handles) handle = acquireFrom(registry, instance);
  for (u32 index = 0; index < kRing; ++index) {
    EXPECT_EQ(registry.release(handles[kRing - index]), 0);
  }
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
  EXPECT_EQ(registry.release(handles[0]), 0);
  EXPECT_EQ(acquireFrom(registry, instance), handles[kRing]);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
}

TEST(InstanceRegistry, TheGuardStaysSet) {
  tInstanceRegistry registry(rangeOf(kRing + 2));
  tRecordingConfigurable instance;
  u32 const kept = acquireFrom(registry, instance);
  acquireAndRelease(registry, instance, 5 * (kRing + 1));
  u32 const handle = acquireFrom(registry, instance);
  EXPECT_EQ(registry.release(handle), 0);
  for (u32 index = 0; index < kRing; ++index) {
    u32 const next = acquireFrom(registry, instance);
    EXPECT_NE(next, handle);
    EXPECT_NE(next, kept);
    EXPECT_EQ(registry.release(next), 0);
  }
}

TEST(InstanceRegistry, WhenEveryNumberIsInUseThereIsNoHandle) {
  tInstanceRegistry registry(rangeOf(3));
  tRecordingConfigurable instance;
  for (u32 index = 0; index < 3; ++index) acquireFrom(registry, instance);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
  i32 status = 0;
  EXPECT_TRUE(registry.find(kFirstHandle + 2, status) == &instance);
}

TEST(InstanceRegistry, AnExhaustedRangeServesAgainWhenTheRingMovesOn) {
  tInstanceRegistry registry(rangeOf(kRing + 1));
  tRecordingConfigurable instance;
  for (u32 index = 0; index <= kRing; ++index) acquireFrom(registry, instance);
  EXPECT_EQ(acquiringFails(registry, instance), -50150);
  for (u32 index = 0; index <= kRing; ++index) {
    EXPECT_EQ(registry.release(kFirstHandle + index), 0);
  }
  EXPECT_EQ(acquireFrom(registry, instance), kFirstHandle);
}

TEST(InstanceRegistry, ASuccessLeavesAnEarlierStatusAlone) {
  tInstanceRegistry registry;
  tRecordingConfigurable instance;
  i32 status = -1;
  u32 const handle = registry.acquire(instance, status);
  EXPECT_EQ(handle, kFirstHandle);
  EXPECT_TRUE(registry.find(handle, status) == &instance);
  EXPECT_EQ(status, -1);
}
