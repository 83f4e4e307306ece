// The memory of the event log from within: what is next to a text, and the numbers at its ends.

#include "common/tEventRing.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "common/tEventLine.h"
#include "tInterruption.h"

namespace {

constexpr u32 kLongest = kVexEventTextSize - 1;

// Something with bytes behind it that nobody writes to.
template <class T>
struct tGuarded {
  T object = {};
  u8 guard[16] = {};

  bool isWhole() const {
    for (u8 const byte : guard) {
      if (byte != 0) return false;
    }
    return true;
  }
};

constexpr u8 kFiller = 0x5A;

// The text is the last member, but the event is a little larger.
bool isUntouchedBehindText(tVexEvent const& event) {
  u8 bytes[sizeof(event)];
  std::memcpy(bytes, &event, sizeof(event));
  size_t place = offsetof(tVexEvent, text) + sizeof(event.text);
  while (place < sizeof(bytes) && bytes[place] == kFiller) ++place;
  return place == sizeof(bytes);
}
static_assert(sizeof(tVexEvent) > offsetof(tVexEvent, text) + kVexEventTextSize);

// A ring with so many events, each with its number for a text.
std::unique_ptr<tEventRing> makeRing(u64 events) {
  auto ring = std::make_unique<tEventRing>();
  for (u64 number = 1; number <= events; ++number) {
    ring->add(kVexEventLife, static_cast<i64>(number), std::to_string(number).c_str());
  }
  return ring;
}

void addTurn(tEventRing& ring) {
  for (u32 count = 0; count < kVexEventCount; ++count) ring.add(kVexEventLife, 0, "later");
}

// Writes an event beside the test, and is held up in the middle of its text.
class tHeldWriter {
 public:
  explicit tHeldWriter(tEventRing& eventRing)
      : ring(eventRing), held(filled(), 1, [this] { stayWithin(); }) {
    pthread_create(&thread, nullptr, &run, this);
  }
  ~tHeldWriter() {
    mayBegin = mayEnd = true;
    pthread_join(thread, nullptr);
  }
  tHeldWriter(tHeldWriter const&) = delete;
  tHeldWriter& operator=(tHeldWriter const&) = delete;

  // Returns when it is held up.
  void begin() {
    mayBegin = true;
    await(isWithin);
  }

 private:
  static constexpr size_t kWritten = 200;  // characters, until then

  static void await(std::atomic<bool> const& flag) {
    while (!flag) sched_yield();
  }
  static void* run(void* writer) {
    auto& self = *static_cast<tHeldWriter*>(writer);
    await(self.mayBegin);
    self.ring.add(kVexEventLife, 0, self.text.at(tPages::kPage - kWritten));
    return nullptr;
  }
  char* filled() {
    std::memset(text.at(tPages::kPage - kWritten), 'b', kLongest);
    return text.at(tPages::kPage);
  }
  void stayWithin() {
    isWithin = true;
    await(mayEnd);
  }

  tEventRing& ring;
  tPages const text{2};
  std::atomic<bool> mayBegin = false;
  std::atomic<bool> isWithin = false;
  std::atomic<bool> mayEnd = false;
  tInterruption const held;
  pthread_t thread = {};
};

}  // namespace

// The thread sanitizer holds a lock of its own within an atomic operation, and would wait for
// itself.
#if !defined(__SANITIZE_THREAD__)

TEST(EventRing, AWriterThatComesLateLeavesTheLaterEventInItsPlace) {
  tPages const memory(5);
  auto& ring = *new (memory.at(0)) tEventRing;
  constexpr u64 kNumber = 32;  // of a place that is not in the first page
  for (u64 number = 1; number < kNumber; ++number) ring.add(kVexEventLife, 0, "before");
  tInterruption const late(memory.at(tPages::kPage), 4, [&] { addTurn(ring); });
  ring.add(kVexEventLife, 0, "late");
  tVexEvent event = {};
  ASSERT_TRUE(ring.read(kNumber + kVexEventCount, event));
  EXPECT_STREQ(event.text, "later");
}

#endif

TEST(EventRing, AWriterThatFindsAnotherInItsPlaceLetsItsEventGo) {
  auto const ring = makeRing(0);
  tPages const memory(2);
  char* const text = memory.at(tPages::kPage - 2);
  std::memcpy(text, "text", 5);
  bool isThere = true;
  tVexEvent event = {};
  tInterruption const within(memory.at(tPages::kPage), 1, [&] {
    addTurn(*ring);
    isThere = ring->read(1 + kVexEventCount, event);
  });
  ring->add(kVexEventLife, 0, text);
  EXPECT_FALSE(isThere);
}

// The reader is held up in the middle of the text, too.
TEST(EventRing, AnEventThatIsWrittenAnewMeanwhileIsNotRead) {
  constexpr size_t kTextOfFirst = 288;  // where the text of the first event lies
  constexpr size_t kRead = 104;         // characters of that before the reader is held up
  tPages const memory(6);
  auto& ring = *new (memory.at(tPages::kPage - kTextOfFirst - kRead)) tEventRing;
  std::string const text(kLongest, 'a');
  for (u32 count = 0; count < kVexEventCount; ++count) ring.add(kVexEventLife, 0, text.c_str());
  tHeldWriter writer(ring);
  tVexEvent event = {};
  {
    tInterruption const within(memory.at(tPages::kPage), 5, [&] { writer.begin(); });
    ASSERT_TRUE(ring.read(1, event));
  }
  EXPECT_EQ(event.number, 2u);
  EXPECT_EQ(event.text, text);
}

TEST(EventRing, BeginsWithTheOldestThatIsKept) {
  for (u64 const events : {1u, 2u, 63u, 64u, 65u, 127u, 128u, 129u, 200u}) {
    auto const ring = makeRing(events);
    u64 const oldest = events <= kVexEventCount ? 1 : events - kVexEventCount + 1;
    for (u64 const least : {u64{0}, u64{1}, oldest}) {
      tVexEvent event = {};
      ASSERT_TRUE(ring->read(least, event));
      EXPECT_EQ(event.number, oldest);
      EXPECT_EQ(event.time, static_cast<i64>(oldest));
      EXPECT_EQ(event.text, std::to_string(oldest));
    }
    tVexEvent event = {};
    ASSERT_TRUE(ring->read(events, event));
    EXPECT_EQ(event.number, events);
    EXPECT_FALSE(ring->read(events + 1, event));
  }
}

TEST(EventRing, HasNoEventBeforeTheFirst) {
  tVexEvent event = {};
  EXPECT_FALSE(makeRing(0)->read(0, event));
  EXPECT_FALSE(makeRing(0)->read(1, event));
}

TEST(EventRing, ATextIsCutAtTheEndOfItsPlace) {
  for (size_t const length :
       {size_t{kLongest - 1}, size_t{kLongest}, size_t{kLongest + 1}, size_t{600}}) {
    tGuarded<tEventRing> ring;
    for (u32 count = 0; count < kVexEventCount; ++count) {
      ring.object.add(7, 0, std::string(length, 'x').c_str());
    }
    EXPECT_TRUE(ring.isWhole());
    for (u64 number = 1; number <= kVexEventCount; ++number) {
      tVexEvent event;
      std::memset(&event, kFiller, sizeof(event));
      ASSERT_TRUE(ring.object.read(number, event));
      EXPECT_EQ(event.number, number);
      EXPECT_EQ(event.level, 7u);
      EXPECT_EQ(std::strlen(event.text), length < kLongest ? length : kLongest);
      EXPECT_TRUE(isUntouchedBehindText(event));
    }
  }
}

TEST(EventLine, IsCutAtItsEnd) {
  for (size_t const length : {size_t{kLongest - 1}, size_t{kLongest}, size_t{kLongest + 1}}) {
    tGuarded<tEventLine> line;
    std::string const text(length, 'x');
    line.object.append("%s", text.c_str());
    EXPECT_EQ(line.object.getText(), text.substr(0, kLongest));
    line.object.append("%s", "more");
    EXPECT_EQ(line.object.getText(), (text + "more").substr(0, kLongest));
    EXPECT_TRUE(line.isWhole());
  }
}

TEST(EventLine, LosesOneNewlineThatItHas) {
  tEventLine line;
  line.dropNewline();
  EXPECT_STREQ(line.getText(), "");
  line.append("\n");
  line.dropNewline();
  EXPECT_STREQ(line.getText(), "");
  line.append("a\n\n");
  line.dropNewline();
  EXPECT_STREQ(line.getText(), "a\n");
}
