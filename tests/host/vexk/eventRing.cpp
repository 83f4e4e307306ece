// The memory of the event log from within: what is next to a text, and the numbers at its ends.

#include "common/tEventRing.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

#include "common/tEventLine.h"

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

}  // namespace

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
