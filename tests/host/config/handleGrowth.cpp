// What a handle costs beside few others and beside many, in instructions.

#include <gtest/gtest.h>

#include <vector>

#include "config/tInstanceRegistry.h"
#include "instructionCount.h"
#include "support/tRecordingConfigurable.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kFew = 4;
constexpr u32 kMany = 10'000;
constexpr u32 kSamples = 3;

// A registry that has issued so many handles.
class tManyHandles {
 public:
  explicit tManyHandles(u32 count) {
    handles.reserve(count + kSamples);
    for (u32 index = 0; index < count; ++index) acquire();
    // What a first call costs is not meant.
    i32 status = 0;
    registry.find(handles.back(), status);
    EXPECT_EQ(registry.release(handles.back()), 0);
    handles.pop_back();
  }

  // The instructions of giving one back, the oldest, the newest and one between, on average.
  u64 giveBack() {
    u64 sum = 0;
    for (u32 sample = 0; sample < kSamples; ++sample) {
      size_t const place = sample * (handles.size() - 1) / (kSamples - 1);
      i32 status = -1;
      sum += instructionsOf([&] { status = registry.release(handles[place]); });
      EXPECT_EQ(status, 0);
      handles.erase(handles.begin() + static_cast<std::ptrdiff_t>(place));
      acquire();
    }
    return sum / kSamples;
  }

  u64 take() {
    u64 sum = 0;
    for (u32 sample = 0; sample < kSamples; ++sample) sum += instructionsOf([&] { acquire(); });
    return sum / kSamples;
  }

  u64 lookUp() {
    i32 status = 0;
    u32 const handle = handles[handles.size() / 2];
    return instructionsOf([&] { registry.find(handle, status); });
  }

 private:
  void acquire() {
    i32 status = 0;
    handles.push_back(registry.acquire(instance, status));
    EXPECT_EQ(status, 0);
  }

  tRecordingConfigurable instance;
  tInstanceRegistry registry;
  std::vector<u32> handles;
};

}  // namespace

TEST(HandleGrowth, AHandleGivenBackBesideManyThousandCostsAtMostFourTimesThatBesideFour) {
  u64 const few = tManyHandles(kFew).giveBack();
  u64 const many = tManyHandles(kMany).giveBack();
  EXPECT_LE(many, 4 * few);
}

TEST(HandleGrowth, AHandleTakenBesideManyThousandCostsAtMostFourTimesThatBesideFour) {
  u64 const few = tManyHandles(kFew).take();
  u64 const many = tManyHandles(kMany).take();
  EXPECT_LE(many, 4 * few);
}

TEST(HandleGrowth, ALookUpBesideManyThousandCostsAtMostFourTimesThatBesideFour) {
  tManyHandles few(kFew);
  tManyHandles many(kMany);
  EXPECT_LE(many.lookUp(), 4 * few.lookUp());
}
