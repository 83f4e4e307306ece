// Loading, enumerating, using, removing and unloading, again and again: nothing may stay.

#include "conformance/harness.h"
#include "ntos/debug.h"
#include "pnpDriver.h"
#include "slotLife.h"
#include "slotRequests.h"
#include "tLoadedRack.h"
#include "wine/tPoolMeter.h"

namespace {

constexpr u32 kRounds = 100;

// In a round some devices stay as Wine left them, some are started, some go by surprise, and some
// are removed and started again.
void liveThroughRound(tLoadedRack& rack, u32 round) {
  for (u32 index = 0; index < tLoadedRack::kSlots; ++index) {
    DEVICE_OBJECT* const device = rack.getSlot(index);
    u32 const fate = (index + round) % 4;
    if (fate > 0) liveThrough(device);
    if (fate == 2) {
      EXPECT_EQ(sendPnp(device, IRP_MN_SURPRISE_REMOVAL), STATUS_SUCCESS);
    }
    if (fate == 3) {
      EXPECT_EQ(sendPnp(device, IRP_MN_REMOVE_DEVICE), STATUS_SUCCESS);
      EXPECT_EQ(sendPnp(device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
    }
  }
}

char const* runRound(u32 round) {
  tLoadedRack rack(pnpEnumerator());
  char const* const problem = rack.load();
  if (problem == nullptr) liveThroughRound(rack, round);
  char const* const problemAtEnd = rack.unload();
  return problem == nullptr ? problemAtEnd : problem;
}

}  // namespace

// The first round is not counted: its driver gives the trace a filter, and the last keeps it.
TEST(PnpRounds, LeaveNoBlockAndNoDevice) {
  tPoolMeter const meter;
  EXPECT_STREQ(runRound(0), nullptr);
  u32 const blocks = meter.countBlocks();
  for (u32 round = 1; round <= kRounds; ++round) {
    EXPECT_STREQ(runRound(round), nullptr);
    ASSERT_EQ(meter.countBlocks(), blocks);
  }
  EXPECT_TRUE(meter.isSound());
  DbgPrint("[pnp] %u rounds, blocks that stay: %u\n", kRounds, blocks);
}
