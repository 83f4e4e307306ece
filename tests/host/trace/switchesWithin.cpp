// Random switches of two streams from within the open and close of their destinations.

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>

#include "oxdiagk/tTrace.h"
#include "rounds.h"
#include "support/recordingDestination.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"

namespace {

using nOXDIAG100::iTraceDestination;

constexpr int kSwitchings = 40'000;
constexpr u32 kMostWithin = 4;

class tSwitchingWorld;

// Switches some stream to some destination while it is opened or closed.
class tWanderingDestination : public tKeptLines {
 public:
  iTraceDestination& put(char const*) override { return *this; }
  iTraceDestination& put(char const*, unsigned int) override { return *this; }
  u32 open() override;
  void close() override;

  tSwitchingWorld* world = nullptr;
  bool isOpen = false;
};

class tSwitchingWorld {
 public:
  explicit tSwitchingWorld(int seed) : random(static_cast<unsigned>(seed)) {
    for (tWanderingDestination& each : destinations) each.world = this;
    for (auto& stream : streams) {
      tWanderingDestination& first = pickDestination();
      first.isOpen = true;
      stream.emplace(first);
    }
  }

  void run() {
    switchesLeft = pick(8);
    switchSome();
    switchesLeft = 0;
  }

  void switchWithin() {
    mostWithin = within > mostWithin ? within : mostWithin;
    if (switchesLeft == 0 || pick(2) == 0) return;
    --switchesLeft;
    switchSome();
  }

  bool isUsed(tWanderingDestination const& destination) {
    bool isFound = false;
    for (auto& stream : streams) isFound |= stream->getDestination() == &destination;
    return isFound;
  }

  std::array<tWanderingDestination, 3> destinations;
  u32 mostWithin = 0;

 private:
  u32 pick(u32 count) { return static_cast<u32>(random()) % count; }
  tWanderingDestination& pickDestination() { return destinations[pick(3)]; }

  void switchSome() {
    ++within;
    auto& stream = streams[pick(2)];
    stream->setDestination(pickDestination());
    --within;
  }

  std::mt19937 random;
  std::array<std::optional<tPrivateTrace>, 2> streams;
  u32 within = 0;
  u32 switchesLeft = 0;
};

u32 tWanderingDestination::open() {
  isOpen = true;
  world->switchWithin();
  return 1;
}

void tWanderingDestination::close() {
  isOpen = false;
  world->switchWithin();
}

}  // namespace

TEST(SwitchesWithin, LeaveOpenWhatAStreamUsesAndNothingElse) {
  for (int round = 0; round < roundsOf(kSwitchings); ++round) {
    tSwitchingWorld world(round);
    for (int step = 0; step < 4; ++step) {
      world.run();
      for (tWanderingDestination const& each : world.destinations) {
        ASSERT_EQ(each.isOpen, world.isUsed(each)) << round << ", " << step;
      }
    }
    ASSERT_LE(world.mostWithin, kMostWithin) << round;
  }
}
