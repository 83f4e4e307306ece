// Handles that threads take, use and give back, in every order, and the objects of a module as they
// are first asked for.

#include <gtest/gtest.h>

#include "config/tInstanceRegistry.h"
#include "oxdiagk/statusCodes.h"
#include "schedules/tExplorer.h"
#include "support/tRecordingConfigurable.h"
#include "trace/startedModules.h"

// Behind everything of the standard library, and before what is inline here.
#include "schedules/scheduledAtomics.h"

#include "config/tInstancePlace.h"

using namespace nOXDIAG100;

namespace {

constexpr tHandleRange kFewHandles = {100, 103, 102};

class tHandleUsers {
 public:
  static constexpr unsigned kThreads = 3;

  // Two take a handle, use it and give it back; the third has a try at all of them.
  void run(unsigned thread) {
    if (thread == 2) return tryAll();
    i32 status = 0;
    u32 const handle = registry.acquire(objects[thread], status);
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(isOut[handle - kFewHandles.first]) << handle;
    isOut[handle - kFewHandles.first] = true;
    EXPECT_EQ(registry.find(handle, status), &objects[thread]);
    isOut[handle - kFewHandles.first] = false;
    EXPECT_EQ(registry.release(handle), 0);
    EXPECT_EQ(registry.release(handle), kStatusUnknownHandle);
  }

  void finish() {
    for (u32 handle = kFewHandles.first; handle <= kFewHandles.last; ++handle) {
      i32 status = 0;
      EXPECT_EQ(registry.find(handle, status), nullptr);
      EXPECT_EQ(status, kStatusUnknownHandle);
    }
  }

 private:
  void tryAll() {
    for (u32 handle = kFewHandles.first; handle <= kFewHandles.last; ++handle) {
      i32 status = 0;
      tConfigurable* const found = registry.find(handle, status);
      EXPECT_TRUE(found == nullptr || found == &objects[0] || found == &objects[1]);
      EXPECT_EQ(found == nullptr, status == kStatusUnknownHandle);
    }
  }

  tRecordingConfigurable objects[2];
  tInstanceRegistry registry{kFewHandles};
  bool isOut[4] = {};
};

// A handle that two threads give back.
class tTwoReleases {
 public:
  static constexpr unsigned kThreads = 2;

  tTwoReleases() {
    i32 status = 0;
    handle = registry.acquire(object, status);
  }
  void run(unsigned thread) { statuses[thread] = registry.release(handle); }
  void finish() {
    EXPECT_NE(statuses[0] == 0, statuses[1] == 0);
    EXPECT_EQ(statuses[0] + statuses[1], kStatusUnknownHandle);
  }

 private:
  tRecordingConfigurable object;
  tInstanceRegistry registry;
  u32 handle = 0;
  i32 statuses[2] = {};
};

// An object with an address within itself, and the one that rests in its place.
class tPlaced {
 public:
  tPlaced() = default;
  virtual ~tPlaced() = default;
  virtual int getNumber() const { return *place; }

 protected:
  u64 padding = 0;
  int number = 42;
  int const* place = &number;
};
class tRestingPlaced final : public tPlaced {};

// The first calls of several threads before the object is built.
class tFirstAskers {
 public:
  static constexpr unsigned kThreads = 3;

  void run(unsigned /*thread*/) {
    tPlaced& placed = place.get();
    EXPECT_EQ(placed.getNumber(), 42);
    EXPECT_EQ(&placed, &place.get());
  }
  void finish() { EXPECT_EQ(place.get().getNumber(), 42); }

 private:
  tInstancePlace<tPlaced, tRestingPlaced> place;
};

}  // namespace

TEST(RegistrySchedules, HandlesAreTheirOwnersUntilTheyAreGivenBack) {
  explore<tHandleUsers>("registryUsers", {1, 1000});
}

TEST(RegistrySchedules, AHandleIsGivenBackOnce) {
  explore<tTwoReleases>("registryReleases", {tReach::kExhaustive, 0});
}

TEST(RegistrySchedules, WhoAsksFirstFindsAWholeObject) {
  explore<tFirstAskers>("registryFirst", {2, 500});
}
