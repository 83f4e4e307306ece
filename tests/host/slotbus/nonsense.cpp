// Whatever the bytes, the component reads them to the end, stays inside them, and tells the truth
// about how many lines were good. The texts are made of a fixed sequence of random numbers.

#include <random>
#include <set>

#include "rounds.h"
#include "slotbusSupport.h"

using namespace nSLOTBUS100;

namespace {

constexpr u32 kTexts = roundsOf(40'000);  // for each way of making them
constexpr char const* kShowNothing = "verbosity>=1000";

using tRandom = std::mt19937;

u32 below(tRandom& random, u32 limit) {
  return random() % limit;
}

std::string makeBytes(tRandom& random) {
  std::string text(below(random, 200), '\0');
  for (char& character : text) character = static_cast<char>(random());
  return text;
}

// Pieces that the parser knows, so that the texts come close to being racks.
std::string makePieces(tRandom& random) {
  static std::string const pieces[] = {"|",
                                       " | ",
                                       "\n",
                                       "\r\n",
                                       "#",
                                       ",",
                                       " ",
                                       "\t",
                                       "0",
                                       "1",
                                       "99",
                                       "100",
                                       "0x",
                                       "0xFFFFFFFFFFFFFFFF",
                                       "18446744073709551616",
                                       "RACK\\DMM",
                                       "RACK\\DMM, RACK\\D",
                                       "meter",
                                       std::string(1, '\0'),
                                       "\xFF\xFE",
                                       "\xEF\xBB\xBF",
                                       "1 | 2 | A | b\n",
                                       "3 | 4 | C | d\n",
                                       std::string(130, 'x'),
                                       std::string(210, 'i'),
                                       std::string(2100, 'l')};
  std::string text;
  for (u32 count = below(random, 30); count != 0; --count) {
    text += pieces[below(random, std::size(pieces))];
  }
  return text;
}

// A good rack with a few bytes changed, removed or doubled.
std::string makeDamaged(tRandom& random) {
  std::string text =
      "# rack\n 1 | 11 | RACK\\A-1, RACK\\A | first module\n 2 | 0x0C | RACK\\B | second\r\n"
      " 3 | 13 | RACK\\C | third\n";
  for (u32 count = 1 + below(random, 4); count != 0; --count) {
    size_t const place = below(random, static_cast<u32>(text.size()));
    switch (below(random, 3)) {
      case 0:
        text[place] = static_cast<char>(random());
        break;
      case 1:
        text.erase(place, 1 + below(random, 8));
        break;
      default:
        text.insert(place, text.substr(place, below(random, 20)));
        break;
    }
  }
  return text;
}

u32 linesWithin(std::string const& text) {
  u32 count = 0;
  for (char character : text) count += character == '\n' ? 1 : 0;
  return count + (text.empty() || text.back() == '\n' ? 0 : 1);
}

void expectConsistent(tReadRack const& read) {
  std::set<u32> slots;
  std::set<u64> instances;
  for (u32 index = 0; index < read.rack.getCount(); ++index) {
    tDevice const& device = read.rack.getDevice(index);
    EXPECT_GE(device.slot, kFirstSlot);
    EXPECT_LE(device.slot, kLastSlot);
    EXPECT_FALSE(device.hardwareIds.isEmpty());
    EXPECT_FALSE(device.description.isEmpty());
    EXPECT_LE(device.description.getLength(), kMaxDescriptionLength);
    EXPECT_TRUE(slots.insert(device.slot).second);
    EXPECT_TRUE(instances.insert(device.instance).second);
  }
}

void expectSense(std::string const& text) {
  tReadRack const read(text, kShowNothing);
  u32 const good = read.rack.getCount();
  u32 const bad = read.reader.getFailureCount();
  EXPECT_EQ(read.result, bad == 0 ? 0U : 1U);
  EXPECT_LE(read.reader.getLineCount(), linesWithin(text));
  EXPECT_LE(good, read.reader.getLineCount());
  expectConsistent(read);
}

void readMany(std::string (*make)(tRandom&), u32 seed) {
  tRandom random(seed);
  for (u32 count = 0; count < kTexts && !testing::Test::HasFailure(); ++count) {
    std::string const text = make(random);
    expectSense(text);
    if (testing::Test::HasFailure()) ADD_FAILURE() << testing::PrintToString(text);
  }
}

}  // namespace

TEST(SlotbusNonsense, RandomBytesAreReadSafely) {
  readMany(makeBytes, 1);
}

TEST(SlotbusNonsense, RandomPiecesOfRacksAreReadSafely) {
  readMany(makePieces, 2);
}

TEST(SlotbusNonsense, DamagedRacksAreReadSafely) {
  readMany(makeDamaged, 3);
}

TEST(SlotbusNonsense, ABinaryFileIsReadSafelyWithEverythingShown) {
  tRandom random(4);
  std::string text(100000, '\0');
  for (char& character : text) character = static_cast<char>(random());
  text[0] = 'x';
  tReadRack const read(text, "verbosity>=0");
  EXPECT_EQ(read.result, 1U);
  EXPECT_EQ(read.reader.getLineCount(), linesWithin(text));
  for (char character : read.traced()) {
    ASSERT_TRUE((character >= ' ' && character <= '~') || character == '\n' || character == '\t');
  }
}

TEST(SlotbusNonsense, OneLineOfAMebibyteIsReadSafely) {
  tReadRack const read(std::string(kMaxRackTextLength, '|'));
  EXPECT_EQ(read.reader.getFailureCount(), 1U);
}

TEST(SlotbusNonsense, NulBytesAloneAreOneBadLine) {
  tReadRack const read(std::string(5000, '\0'));
  EXPECT_EQ(read.reader.getLineCount(), 1U);
  EXPECT_EQ(read.reader.getFailureCount(), 1U);
}
