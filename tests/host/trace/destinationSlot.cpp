// The slot between a stream and its destination, and the table of the texts on their way, each by
// itself.

#include <thread>

#include "keptLines.h"
#include "ntoshost/thread.h"
#include "oxdiagk/tDestinationSlot.h"
#include "startedModules.h"
#include "tRaisedIrql.h"
#include "trace/tTextsOnTheWay.h"
#include "vexk/threadUtility.h"

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tDestinationSlot;
using nOXDIAG100::tTextsOnTheWay;

namespace {

constexpr u32 kFirstThread = 1;
constexpr u32 kOneThread = 0x1001;
constexpr u32 kAnotherThread = 0x1002;

struct tOwnSlot {
  explicit tOwnSlot(iTraceDestination* first) : current(first) {}

  void send(char const* text) { slot.send(text, static_cast<u32>(__builtin_strlen(text))); }
  void sendElsewhere(char const* text) {
    std::thread([this, text] { send(text); }).join();
  }

  iTraceDestination* current;
  tDestinationSlot slot{current};
};

// Sends on from its own put, deeper and deeper.
class tSendingOn : public tKeptLines {
 public:
  tOwnSlot* slot = nullptr;

  iTraceDestination& put(char const* text, unsigned int length) override {
    tKeptLines::put(text, length);
    if (pieces.size() < 100) slot->send("again");
    return *this;
  }
};

// Whether others see that a text is within its put.
class tSeenPut : public tKeptLines {
 public:
  bool wasSeen = false;

  iTraceDestination& put(char const* text, unsigned int length) override {
    wasSeen = tTextsOnTheWay::findOther(kAnotherThread, *this, nullptr) != 0;
    return tKeptLines::put(text, length);
  }
};

// Calls `work` as an interrupt upon the thread of a processor that idles: the low half of its id is
// 0.
template <class tWork>
void interruptIdleThread(tWork work) {
  std::thread([&] {
    ntoshost::overrideCurrentThreadId(u64{1} << 32);
    tRaisedIrql const raised(DISPATCH_LEVEL);
    work();
  }).join();
}

bool isSeen(iTraceDestination const& destination, tDestinationSlot const* slot) {
  return tTextsOnTheWay::findOther(kAnotherThread, destination, slot) == kOneThread;
}

}  // namespace

TEST(DestinationSlot, TextGoesToWhatIsInstalled) {
  tKeptLines first;
  tKeptLines second;
  tOwnSlot own(&first);
  own.send("one");
  own.slot.install(second);
  own.send("two");
  EXPECT_EQ(first.pieces, std::vector<std::string>{"one"});
  EXPECT_EQ(second.pieces, std::vector<std::string>{"two"});
  EXPECT_EQ(own.slot.get(), &second);
}

TEST(DestinationSlot, WithoutADestinationTextIsDropped) {
  tOwnSlot own(nullptr);
  own.send("nothing");
  EXPECT_FALSE(tTextsOnTheWay::isWithin(tThreadUtility::getCurrentThreadId(), nullptr));
}

TEST(DestinationSlot, AShutSlotIsOpenToItsThreadAlone) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  own.slot.shut(1);
  own.sendElsewhere("dropped");
  own.send("kept");
  own.slot.open(1);
  own.sendElsewhere("open");
  EXPECT_EQ(kept.pieces, (std::vector<std::string>{"kept", "open"}));
}

TEST(DestinationSlot, AnInterruptOfTheThreadIsShutOut) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  own.slot.shut(1);
  {
    tRaisedIrql const raised(DISPATCH_LEVEL);
    own.send("dropped");
  }
  own.slot.open(1);
  EXPECT_TRUE(kept.pieces.empty());
}

TEST(DestinationSlot, AnInterruptOfAnIdleProcessorIsSentAndSeen) {
  tSeenPut seen;
  tOwnSlot own(&seen);
  u32 places[tTextsOnTheWay::kMostWithinEachOther];
  for (u32& place : places) place = tTextsOnTheWay::enter(kOneThread, own.slot);
  for (u32 const place : places) tTextsOnTheWay::leave(place);
  interruptIdleThread([&] { own.send("idle"); });
  EXPECT_EQ(seen.pieces, std::vector<std::string>{"idle"});
  EXPECT_TRUE(seen.wasSeen);
}

TEST(DestinationSlot, AnInterruptOfAnIdleProcessorIsNotWhoShutIt) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  own.slot.shut(1);
  interruptIdleThread([&] { own.send("dropped"); });
  own.slot.open(1);
  EXPECT_TRUE(kept.pieces.empty());
}

TEST(DestinationSlot, ASlotIsOpenWhenAllWhoShutItHaveOpenedIt) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  own.slot.shut(1);
  own.slot.shut(2);
  own.slot.open(1);
  own.sendElsewhere("dropped");
  own.slot.open(2);
  own.sendElsewhere("open");
  EXPECT_EQ(kept.pieces, std::vector<std::string>{"open"});
}

TEST(DestinationSlot, PutsWithinEachOtherEnd) {
  tSendingOn sending;
  tOwnSlot own(&sending);
  sending.slot = &own;
  own.send("first");
  EXPECT_EQ(sending.pieces.size(), tTextsOnTheWay::kMostWithinEachOther);
  own.send("next");
  EXPECT_EQ(sending.pieces.size(), 2 * tTextsOnTheWay::kMostWithinEachOther);
}

TEST(TextsOnTheWay, ATextCountsEverywhereUntilItSaysWhereItGoes) {
  tKeptLines kept;
  tKeptLines other;
  tOwnSlot own(&kept);
  tOwnSlot otherSlot(&other);
  u32 const place = tTextsOnTheWay::enter(kOneThread, own.slot);
  EXPECT_TRUE(isSeen(kept, nullptr) && isSeen(other, nullptr));
  EXPECT_TRUE(isSeen(kept, &own.slot));
  EXPECT_FALSE(isSeen(kept, &otherSlot.slot));
  tTextsOnTheWay::direct(place, kept);
  EXPECT_TRUE(isSeen(kept, nullptr) && isSeen(kept, &own.slot));
  EXPECT_FALSE(isSeen(other, nullptr) || isSeen(kept, &otherSlot.slot));
  EXPECT_TRUE(tTextsOnTheWay::isWithin(kOneThread, &kept));
  EXPECT_FALSE(tTextsOnTheWay::isWithin(kOneThread, &other));
  tTextsOnTheWay::leave(place);
  EXPECT_FALSE(isSeen(kept, nullptr) || tTextsOnTheWay::isWithin(kOneThread, nullptr));
}

TEST(TextsOnTheWay, ATextBehindAFreePlaceIsSeen) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  u32 const before = tTextsOnTheWay::enter(kOneThread, own.slot);
  u32 const behind = tTextsOnTheWay::enter(kFirstThread, own.slot);
  tTextsOnTheWay::leave(before);
  EXPECT_EQ(tTextsOnTheWay::findOther(kAnotherThread, kept, nullptr), kFirstThread);
  EXPECT_EQ(tTextsOnTheWay::findOther(kFirstThread, kept, nullptr), 0u);
  tTextsOnTheWay::leave(behind);
}

TEST(TextsOnTheWay, APlaceThatIsTakenAgainSaysNothingOfBefore) {
  tKeptLines kept;
  tKeptLines other;
  tOwnSlot own(&kept);
  u32 const place = tTextsOnTheWay::enter(kOneThread, own.slot);
  tTextsOnTheWay::direct(place, kept);
  tTextsOnTheWay::leave(place);
  ASSERT_EQ(tTextsOnTheWay::enter(kOneThread, own.slot), place);
  EXPECT_TRUE(isSeen(kept, nullptr) && isSeen(other, nullptr));
  tTextsOnTheWay::leave(place);
}

TEST(TextsOnTheWay, AThreadHasFourPlacesAndAllHaveTheTable) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  std::vector<u32> places;
  for (u32 thread = 1; places.size() < tTextsOnTheWay::kCapacity; ++thread) {
    for (u32 count = 0; count < tTextsOnTheWay::kMostWithinEachOther; ++count) {
      places.push_back(tTextsOnTheWay::enter(thread, own.slot));
      ASSERT_NE(places.back(), tTextsOnTheWay::kNoPlace);
    }
    EXPECT_EQ(tTextsOnTheWay::enter(thread, own.slot), tTextsOnTheWay::kNoPlace);
  }
  EXPECT_EQ(tTextsOnTheWay::enter(kOneThread, own.slot), tTextsOnTheWay::kNoPlace);
  own.send("dropped");
  EXPECT_TRUE(kept.pieces.empty());
  for (u32 const place : places) tTextsOnTheWay::leave(place);
  own.send("kept");
  EXPECT_EQ(kept.pieces, std::vector<std::string>{"kept"});
}

// Behind a table that was full there is nobody.
TEST(TextsOnTheWay, OneTextInATableThatWasFullIsTheOnlyOne) {
  tKeptLines kept;
  tOwnSlot own(&kept);
  std::vector<u32> places;
  for (u32 thread = 1; places.size() < tTextsOnTheWay::kCapacity; ++thread) {
    places.push_back(tTextsOnTheWay::enter(thread, own.slot));
  }
  EXPECT_EQ(tTextsOnTheWay::enter(kOneThread, own.slot), tTextsOnTheWay::kNoPlace);
  for (u32 const place : places) tTextsOnTheWay::leave(place);
  u32 const place = tTextsOnTheWay::enter(kOneThread, own.slot);
  tTextsOnTheWay::direct(place, kept);
  EXPECT_EQ(tTextsOnTheWay::findOther(kOneThread, kept, nullptr), 0u);
  EXPECT_EQ(tTextsOnTheWay::findOther(kOneThread, kept, &own.slot), 0u);
  tTextsOnTheWay::leave(place);
}
