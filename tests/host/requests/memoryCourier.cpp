// Couriers by themselves: they carry memory of this very process, some of which arrives late.

#include "host/requests/tMemoryCourier.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ntoshost/faults.h"
#include "requests/heldLocks.h"
#include "requests/tChild.h"
#include "requests/tWithheldPages.h"
#include "vexkhost/requestServer.h"

#ifndef OXDIAG_TEST_SANITIZED
namespace {
constinit thread_local size_t refused = 0;  // a size for which there is no memory
}

extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) noexcept {
  return refused != 0 && size == refused ? nullptr : __libc_malloc(size);
}
#endif

namespace {

using tClock = std::chrono::steady_clock;

constexpr size_t kLong = 5 * kPage;  // more than is carried at once
constexpr size_t kGuard = 64;
constexpr size_t kPastLoad = 4 * kPage;  // a page of the second piece

u8 const present[kPage] = {};

long countThreads() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// How many there are without couriers: a sanitizer may have one of its own, from the first on.
long countThreadsAlone() {
  pid_t first = 0;
  std::thread([&] { first = gettid(); }).join();
  std::string const place = "/proc/self/task/" + std::to_string(first);
  while (std::filesystem::exists(place)) std::this_thread::yield();
  return countThreads();
}

long const kThreadsAlone = countThreadsAlone();

// A thread that was waited for is still told for a moment.
void awaitCouriers(long left = 0) {
  while (countThreads() > kThreadsAlone + left) std::this_thread::yield();
}

// Pages of memory that this program has been given.
size_t countPages() {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages;
}

u64 millisecondsSince(tClock::time_point start) {
  auto const taken = std::chrono::duration_cast<std::chrono::milliseconds>(tClock::now() - start);
  return static_cast<u64>(taken.count());
}

u64 addressOf(void const* place) {
  return reinterpret_cast<u64>(place);
}

// A courier for the memory of this process, dismissed at the end of the scope. On a loaded machine
// the one before may have been left behind, even if its memory was there.
class tHired {
 public:
  tHired() {
    awaitCouriers();
    courier = tMemoryCourier::hire(getpid(), getuid());
    EXPECT_NE(courier, nullptr);
    EXPECT_TRUE(courier->reach());
  }
  ~tHired() {
    if (courier != nullptr) courier->dismiss();
  }
  tHired(tHired const&) = delete;
  tHired& operator=(tHired const&) = delete;

  tMemoryCourier* operator->() const { return courier; }

  tMemoryCourier* courier = nullptr;
};

// Another process, whose page at this address never arrives.
class tStuckProcess {
 public:
  explicit tStuckProcess(u8* page)
      : place(page), child([this] {
          void* const late = mmap(place, kPage, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
          bool const isGood = tWithheldPages(late, kPage).isWithheld && isWithheld.give();
          return isGood && mayEnd.await() ? 0 : 1;
        }) {
    EXPECT_TRUE(isWithheld.await());
  }

  pid_t process() const { return child.pid; }

  // Hires one for it, and dismisses it while it waits.
  void leaveACourier() {
    tMemoryCourier* const courier = tMemoryCourier::hire(process(), getuid());
    ASSERT_NE(courier, nullptr);
    EXPECT_TRUE(courier->reach());
    std::thread givingUp([&] {
      while (courier->getWaitingTime() == 0) std::this_thread::yield();
      courier->giveUp();
    });
    u8 byte;
    EXPECT_EQ(courier->fetch(&byte, addressOf(place), 1), 0u);
    givingUp.join();
    courier->dismiss();
  }

  void end() {
    EXPECT_TRUE(mayEnd.give());
    EXPECT_EQ(child.await(), 0);
  }

 private:
  u8* place;
  tSignal isWithheld;
  tSignal mayEnd;
  tChild child;
};

// A process with a courier left behind for it, which comes back when the memory is delivered.
class MemoryCourierLate : public testing::Test {
 protected:
  void SetUp() override {
    if (!canWithhold()) GTEST_SKIP() << "the system lets only root handle faults of its memory";
    page = static_cast<u8*>(newPage());
    withheld = std::make_unique<tWithheldPages>(page, kPage);
    ASSERT_TRUE(withheld->isWithheld);
  }

  // The one that was left behind is back.
  void TearDown() override { awaitCouriers(); }

  void deliver() {
    EXPECT_TRUE(withheld->deliver(page, u8{0}));
    awaitCouriers();
  }

  u8* page = nullptr;
  std::unique_ptr<tWithheldPages> withheld;
  u8 bytes[kPage] = {};
};

}  // namespace

TEST(MemoryCourier, IsThatOfTheThreadThatHasHiredIt) {
  EXPECT_EQ(tMemoryCourier::ofThisThread(), nullptr);
  tMemoryCourier* const first = tMemoryCourier::hire(getpid(), getuid());
  EXPECT_EQ(tMemoryCourier::ofThisThread(), first);
  std::thread([] { EXPECT_EQ(tMemoryCourier::ofThisThread(), nullptr); }).join();
  tMemoryCourier* const second = tMemoryCourier::hire(getpid(), getuid());
  first->dismiss();
  EXPECT_EQ(tMemoryCourier::ofThisThread(), second);
  second->dismiss();
  EXPECT_EQ(tMemoryCourier::ofThisThread(), nullptr);
}

TEST(MemoryCourier, ReachesAProcessThatIsThere) {
  tHired const here;
  pid_t gone = 0;
  {
    tChild child([] { return 0; });
    gone = child.pid;
  }
  tMemoryCourier* const there = tMemoryCourier::hire(gone, getuid());
  EXPECT_FALSE(there->reach());
  there->dismiss();
}

TEST(MemoryCourier, FetchesWhatIsAskedForAndNoByteMore) {
  tHired const hired;
  std::vector<u8> source(kLong);
  for (size_t index = 0; index < kLong; ++index) source[index] = static_cast<u8>(index * 7);
  for (size_t const length : {size_t{0}, size_t{1}, kPastLoad, kPastLoad + 100, kLong}) {
    std::vector<u8> target(kLong + kGuard, 0xEE);
    EXPECT_EQ(hired->fetch(target.data(), addressOf(source.data()), length), length);
    EXPECT_EQ(std::memcmp(target.data(), source.data(), length), 0);
    EXPECT_EQ(target[length], 0xEE);
  }
}

TEST(MemoryCourier, BringsWhatIsGivenAndNoByteMore) {
  tHired const hired;
  std::vector<u8> source(kLong);
  for (size_t index = 0; index < kLong; ++index) source[index] = static_cast<u8>(index * 7);
  for (size_t const length : {size_t{0}, size_t{1}, kPastLoad, kPastLoad + 100, kLong}) {
    std::vector<u8> target(kLong + kGuard, 0xEE);
    EXPECT_EQ(hired->bring(addressOf(target.data()), source.data(), length), length);
    EXPECT_EQ(std::memcmp(target.data(), source.data(), length), 0);
    EXPECT_EQ(target[length], 0xEE);
  }
}

TEST(MemoryCourier, TellsHowMuchThereWas) {
  tHired const hired;
  for (size_t const there : {kPage, 5 * kPage}) {
    auto* const pages = static_cast<u8*>(newPages(6 * kPage));
    munmap(pages + there, 6 * kPage - there);
    std::vector<u8> own(8 * kPage);
    u64 const start = addressOf(pages) + 10;
    EXPECT_EQ(hired->fetch(own.data(), start, 6 * kPage - 10), there - 10);
    EXPECT_EQ(hired->bring(start, own.data(), 6 * kPage - 10), there - 10);
    munmap(pages, there);
  }
}

TEST(MemoryCourier, IsGoneWhenItIsDismissed) {
  size_t const pages = countPages();
  for (int round = 0; round < 200; ++round) {
    { tHired const hired; }
    awaitCouriers();
  }
  EXPECT_LT(countPages(), pages + 100 * 8192 * 1024 / kPage) << "stacks stay behind";
}

TEST(MemoryCourier, LeavesNoMemory) {
  { tHired const first; }
  size_t const before = mallinfo2().uordblks;
  for (int round = 0; round < 50; ++round) tHired const hired;
  EXPECT_LT(mallinfo2().uordblks, before + 10 * sizeof(tMemoryCourier));
}

TEST(MemoryCourier, WithoutAThreadThereIsNone) {
  size_t const before = mallinfo2().uordblks;
  for (int round = 0; round < 50; ++round) {
    ntoshost::failNth(ntoshost::kFaultThread, 1);
    EXPECT_EQ(tMemoryCourier::hire(getpid(), getuid()), nullptr);
    EXPECT_EQ(tMemoryCourier::ofThisThread(), nullptr);
  }
  ntoshost::clearFaults();
  EXPECT_LT(mallinfo2().uordblks, before + 10 * sizeof(tMemoryCourier));
}

#ifndef OXDIAG_TEST_SANITIZED
TEST(MemoryCourier, WithoutMemoryThereIsNone) {
  refused = sizeof(tMemoryCourier);
  EXPECT_EQ(tMemoryCourier::hire(getpid(), getuid()), nullptr);
  refused = 0;
}
#endif

TEST(MemoryCourier, WaitsForNothingBetweenErrands) {
  tHired const hired;
  u8 byte = 7;
  u8 copy = 0;
  hired->fetch(&copy, addressOf(&byte), 1);
  auto const start = tClock::now();
  while (millisecondsSince(start) < 3) std::this_thread::yield();
  EXPECT_EQ(hired->getWaitingTime(), 0u);
}

// Memory that is there takes nothing of the patience, or little on a busy machine; but when that is
// long over there is none.
TEST(MemoryCourier, InAHurryEndsForGoodAfterAWhile) {
  tHired const hired;
  u8 bytes[kPage];
  auto const start = tClock::now();
  u64 last = 0;
  hired->hurry();
  while (hired->fetch(bytes, addressOf(present), sizeof(bytes)) == sizeof(bytes)) {
    last = millisecondsSince(start);
    ASSERT_LT(last, 5 * tMemoryCourier::kHurriedEnd);
    hired->hurry();
  }
  EXPECT_GE(millisecondsSince(start), tMemoryCourier::kHurriedPatience);
  EXPECT_EQ(hired->bring(addressOf(bytes), bytes, 1), 0u);
}

TEST(MemoryCourier, AfterAHurryThereIsNoMemoryAtAll) {
  tHired const hired;
  u8 bytes[kPage];
  hired->hurry();
  auto const start = tClock::now();
  while (millisecondsSince(start) <= tMemoryCourier::kHurriedEnd) std::this_thread::yield();
  EXPECT_EQ(hired->fetch(bytes, addressOf(present), kPage), 0u);
}

// What was waited before the hurry is no part of its patience.
TEST_F(MemoryCourierLate, AHurryEndsTheWaitThatIsUnderWay) {
  auto* const second = static_cast<u8*>(newPage());
  tWithheldPages const later(second, kPage);
  tHired const hired;
  tClock::time_point start;
  std::thread hurrying([&] {
    while (hired->getWaitingTime() < 3 * tMemoryCourier::kHurriedPatience / 4) {
      std::this_thread::yield();
    }
    start = tClock::now();
    hired->hurry();
    EXPECT_TRUE(withheld->deliver(page, u8{0}));
  });
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), kPage);
  hurrying.join();
  EXPECT_EQ(hired->fetch(bytes, addressOf(second), kPage), 0u);
  EXPECT_GE(millisecondsSince(start), tMemoryCourier::kHurriedPatience);
  EXPECT_LT(millisecondsSince(start), vexkhost::kRequestMemoryPatience / 2);
  EXPECT_TRUE(later.deliver(second, u8{0}));
}

TEST_F(MemoryCourierLate, AHurryWakesWhoIsWaiting) {
  tHired const hired;
  tClock::time_point start;
  std::thread hurrying([&] {
    while (hired->getWaitingTime() < tMemoryCourier::kHurriedPatience / 2) {
      std::this_thread::yield();
    }
    start = tClock::now();
    hired->hurry();
  });
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), 0u);
  hurrying.join();
  EXPECT_GE(millisecondsSince(start), tMemoryCourier::kHurriedPatience);
  EXPECT_LT(millisecondsSince(start), vexkhost::kRequestMemoryPatience / 2);
  EXPECT_TRUE(withheld->deliver(page, u8{0}));
}

TEST_F(MemoryCourierLate, InAHurryIsWaitedForALittle) {
  tHired const hired;
  hired->hurry();
  auto const start = tClock::now();
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), 0u);
  EXPECT_GE(millisecondsSince(start), tMemoryCourier::kHurriedPatience);
  EXPECT_LT(millisecondsSince(start), vexkhost::kRequestMemoryPatience / 2);
  EXPECT_EQ(hired->fetch(bytes, addressOf(present), kPage), 0u);
  EXPECT_TRUE(withheld->deliver(page, u8{0}));
}

// Several waits of a hurry have one patience together.
TEST_F(MemoryCourierLate, InAHurryHasOnePatienceForAll) {
  auto* const second = static_cast<u8*>(newPage());
  tWithheldPages const later(second, kPage);
  tHired const hired;
  auto const start = tClock::now();
  std::thread delivering([&] {
    while (hired->getWaitingTime() < tMemoryCourier::kHurriedPatience / 2) {
      std::this_thread::yield();
    }
    EXPECT_TRUE(withheld->deliver(page, u8{0}));
  });
  hired->hurry();
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), kPage);
  delivering.join();
  EXPECT_EQ(hired->fetch(bytes, addressOf(second), kPage), 0u);
  EXPECT_GE(millisecondsSince(start), tMemoryCourier::kHurriedPatience);
  EXPECT_LT(millisecondsSince(start), 3 * tMemoryCourier::kHurriedPatience / 2);
  EXPECT_TRUE(later.deliver(second, u8{0}));
}

TEST_F(MemoryCourierLate, TellsHowLongItHasWaited) {
  tHired const hired;
  auto const start = tClock::now();
  std::thread delivering([&] {
    u64 waited = 0;
    while (waited < 30) {
      u64 const before = millisecondsSince(start);
      waited = hired->getWaitingTime();
      EXPECT_LE(waited, millisecondsSince(start));
      if (before > 1000) break;
    }
    EXPECT_GE(waited, 30u);
    EXPECT_TRUE(withheld->deliver(page, u8{0}));
  });
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), kPage);
  delivering.join();
  EXPECT_GE(millisecondsSince(start), 30u);
}

TEST_F(MemoryCourierLate, IsGivenUpByAnotherThread) {
  tHired const hired;
  auto const start = tClock::now();
  std::thread givingUp([&] {
    while (hired->getWaitingTime() == 0) std::this_thread::yield();
    hired->giveUp();
  });
  EXPECT_EQ(hired->fetch(bytes, addressOf(page), kPage), 0u);
  givingUp.join();
  EXPECT_EQ(hired->fetch(bytes, addressOf(present), kPage), 0u);
  EXPECT_LT(millisecondsSince(start), vexkhost::kRequestMemoryPatience / 2);
  EXPECT_TRUE(withheld->deliver(page, u8{0}));
}

TEST_F(MemoryCourierLate, CarriesWhatItWasGivenAndNothingLater) {
  u8 early[kPage];
  std::memset(early, 'a', kPage);
  std::memset(bytes, 'b', kPage);
  tHired const hired;
  std::thread givingUp([&] {
    while (hired->getWaitingTime() == 0) std::this_thread::yield();
    hired->giveUp();
  });
  EXPECT_EQ(hired->bring(addressOf(page), early, kPage), 0u);
  givingUp.join();
  EXPECT_EQ(hired->bring(addressOf(page), bytes, kPage), 0u);
  EXPECT_TRUE(withheld->deliver(page, u8{1}));
  while (page[0] == 1) std::this_thread::yield();
  EXPECT_EQ(std::string(page, page + kPage), std::string(kPage, 'a'));
}

TEST_F(MemoryCourierLate, LeftBehindHasNoSuccessorUntilItIsBack) {
  size_t const memory = mallinfo2().uordblks;
  tMemoryCourier* const left = tMemoryCourier::hire(getpid(), getuid());
  left->hurry();
  EXPECT_EQ(left->fetch(bytes, addressOf(page), kPage), 0u);
  left->dismiss();
  EXPECT_EQ(tMemoryCourier::hire(getpid(), getuid()), nullptr);
  tMemoryCourier* const other = tMemoryCourier::hire(getppid(), getuid());
  EXPECT_NE(other, nullptr);
  other->dismiss();
  deliver();
  EXPECT_LT(mallinfo2().uordblks, memory + sizeof(tMemoryCourier));
  tHired const successor;
}

TEST_F(MemoryCourierLate, OneThatComesBackLeavesTheOthersAway) {
  tStuckProcess first(page);
  tStuckProcess second(page);
  first.leaveACourier();
  second.leaveACourier();
  first.end();
  awaitCouriers(1);
  EXPECT_EQ(tMemoryCourier::hire(second.process(), getuid()), nullptr);
  second.end();
  awaitCouriers();
}

TEST_F(MemoryCourierLate, AreLeftBehindInSmallNumbersForAUser) {
  constexpr u32 kMost = vexkhost::kRequestMostWithheld;
  size_t const pages = countPages();
  std::vector<std::unique_ptr<tStuckProcess>> stuck;
  for (u32 count = 0; count < kMost; ++count) {
    stuck.push_back(std::make_unique<tStuckProcess>(page));
    stuck.back()->leaveACourier();
  }
  EXPECT_EQ(tMemoryCourier::hire(getppid(), getuid()), nullptr);
  tMemoryCourier* const ofAnother = tMemoryCourier::hire(getppid(), getuid() + 1);
  ASSERT_NE(ofAnother, nullptr);
  ofAnother->dismiss();
  for (auto const& each : stuck) each->end();
  awaitCouriers();
  EXPECT_LT(countPages(), pages + kMost / 2 * 8192 * 1024 / kPage) << "stacks stay behind";
  tHired const successor;
}
