// Many threads at one lock, with and without time to wait, and handles that are closed at once.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

#include "platformSupport.h"
#include "rounds.h"
#include "vexk/statusCodes.h"

namespace {

constexpr char kAttackedLock[] = "vexkHostSyncAttack::_lock";
constexpr u32 kThreads = 6;
constexpr u32 kAttacks = roundsOf(16000);  // of each
constexpr u32 kTurns = roundsOf(2400);     // of each

// What the lock guards. Not atomic: the thread sanitizer watches it.
struct tGuarded {
  u64 visits = 0;
  u32 inside = 0;
};

void visit(tGuarded& guarded) {
  EXPECT_EQ(0u, guarded.inside++);
  ++guarded.visits;
  EXPECT_EQ(1u, guarded.inside--);
}

// Takes the lock up to four times over, with a timeout that is none, short or for ever.
class tAttacker {
 public:
  tAttacker(tGuarded& object, u32 seed) : guarded(object), random(seed) {}

  void run(u32 rounds) {
    tOpenLock const lock(kAttackedLock);
    for (u32 round = 0; round < rounds; ++round) visits += attack(*lock.sync) ? 1 : 0;
  }

  u64 visits = 0;
  u64 timeouts = 0;

 private:
  bool attack(iSync& lock) {
    constexpr u32 kTimeouts[] = {0, 1, 2, kSyncWaitForever, kSyncWaitForever, 50};
    i32 const status = lock.acquire(kTimeouts[random() % std::size(kTimeouts)]);
    if (status != 0) {
      EXPECT_EQ(kStatusSyncTimeout, status);
      EXPECT_EQ(kStatusSyncNotOwner, lock.release());
      ++timeouts;
      return false;
    }
    u32 const again = random() % 4;
    for (u32 depth = 0; depth < again; ++depth) EXPECT_EQ(0, lock.acquire(0));
    visit(guarded);
    // Sometimes for longer than others wait.
    if (random() % 16 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 1500));
    for (u32 depth = 0; depth <= again; ++depth) EXPECT_EQ(0, lock.release());
    EXPECT_EQ(kStatusSyncNotOwner, lock.release());
    return true;
  }

  tGuarded& guarded;
  std::minstd_rand random;
};

// Waits for ever in a thread of its own and gives the lock back at once.
class tWaiter {
 public:
  explicit tWaiter(iSync& lock, u32 timeout = kSyncWaitForever)
      : thread([this, &lock, timeout] {
          isWaiting = true;
          status = lock.acquire(timeout);
          if (status == 0) lock.release();
        }) {
    while (!isWaiting) std::this_thread::yield();
  }
  i32 finish() {
    thread.join();
    return status;
  }

 private:
  std::atomic<bool> isWaiting{false};
  i32 status = 1;
  std::thread thread;
};

}  // namespace

TEST(VexkHostSyncAttack, ThreadsWithAnyTimeAndDepthKeepOutOfEachOthersWay) {
  tRunningPlatform const platform;
  tGuarded guarded;
  std::vector<tAttacker> attackers;
  for (u32 seed = 1; seed <= kThreads; ++seed) attackers.emplace_back(guarded, seed);
  std::vector<std::thread> threads;
  for (tAttacker& attacker : attackers) threads.emplace_back([&] { attacker.run(kAttacks); });
  for (std::thread& thread : threads) thread.join();
  u64 visits = 0;
  u64 timeouts = 0;
  for (tAttacker const& attacker : attackers) {
    visits += attacker.visits;
    timeouts += attacker.timeouts;
  }
  EXPECT_EQ(visits, guarded.visits);
  EXPECT_EQ(visits + timeouts, u64{kThreads} * kAttacks);
  EXPECT_LT(0u, timeouts);
}

TEST(VexkHostSyncAttack, ALockThatIsAlwaysWantedGoesFromThreadToThread) {
  tRunningPlatform const platform;
  u32 turn = 0;
  auto const takeTurns = [&turn](u32 own) {
    tOpenLock const lock(kAttackedLock);
    for (u32 taken = 0; taken < kTurns;) {
      tSyncLock const held(lock.sync);
      if (turn % 3 != own) continue;
      ++turn;
      ++taken;
    }
  };
  std::vector<std::thread> threads;
  for (u32 own = 0; own < 3; ++own) threads.emplace_back(takeTurns, own);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(3 * kTurns, turn);
}

// The owner lets go when the time of one waiter passes: whoever that wakes, the other one gets the
// lock.
TEST(VexkHostSyncAttack, AWaiterWhoseTimePassesTakesNobodysTurn) {
  tRunningPlatform const platform;
  tOpenLock const lock(nullptr);
  std::minstd_rand random(7);
  for (u32 round = 0; round < 300; ++round) {
    ASSERT_EQ(0, lock->acquire(kSyncWaitForever));
    tWaiter hurried(*lock.sync, 1);
    tWaiter patient(*lock.sync);
    tWaiter other(*lock.sync, 1);
    // About as long as the hurried ones wait.
    std::this_thread::sleep_for(std::chrono::microseconds(800 + random() % 600));
    ASSERT_EQ(0, lock->release());
    EXPECT_EQ(0, patient.finish());
    i32 const statuses[] = {hurried.finish(), other.finish()};
    for (i32 const status : statuses) EXPECT_TRUE(status == 0 || status == kStatusSyncTimeout);
  }
}

// Whoever gets the lock last may close it, although the thread before is not back from its release.
TEST(VexkHostSyncAttack, ALockMayGoAsSoonAsItWasReleased) {
  tRunningPlatform const platform;
  for (u32 round = 0; round < 1000; ++round) {
    i32 status = 0;
    iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
    ASSERT_NE(nullptr, lock);
    ASSERT_EQ(0, lock->acquire(kSyncWaitForever));
    std::atomic<bool> isClosed{false};
    iSync* copy = lock;
    std::thread closer([&] {
      EXPECT_EQ(0, copy->acquire(kSyncWaitForever));
      EXPECT_EQ(0, copy->release());
      EXPECT_EQ(0, syncClose(copy));
      isClosed = true;
    });
    if (round % 2 == 0) std::this_thread::yield();
    EXPECT_EQ(0, lock->release());
    closer.join();
    EXPECT_TRUE(isClosed);
  }
  ntoshost::verifyPool();
}
