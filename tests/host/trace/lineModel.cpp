// Random sequences of puts and line ends, against a stream that takes one character at a time.

#include <random>

#include "keptLines.h"
#include "rounds.h"
#include "startedModules.h"

namespace {

constexpr size_t kLongestPiece = 255;

// What a destination should get.
class tModel {
 public:
  std::vector<std::string> pieces;

  void put(std::string const& text) {
    if (!enabled) return;
    for (char const character : text) {
      line += character;
      if (character == '\n' || line.size() == kLongestPiece) {
        pieces.push_back(line);
        line.clear();
      }
    }
  }

  bool enabled = true;

 private:
  std::string line;
};

// Mostly letters, with newlines and NUL characters at every distance from each other.
std::string randomText(std::mt19937& random) {
  static std::string const letters = "abcdefghijklmnopqrstuvwxyz\x80\xFF\x0B\x09\x01\x8A";
  static size_t const lengths[] = {0, 1, 7, 8, 9, 15, 16, 17, 40, 254, 255, 256, 600};
  std::string text(lengths[random() % std::size(lengths)], ' ');
  u32 const rarity = 1 + static_cast<u32>(random() % 300);
  for (char& character : text) {
    character = letters[random() % letters.size()];
    if (random() % rarity == 0) character = random() % 3 == 0 ? '\0' : '\n';
  }
  return text;
}

void act(std::mt19937& random, tOwnTrace& trace, tModel& model) {
  std::string const text = randomText(random);
  switch (random() % 8) {
    case 0:
      trace.endl();
      model.put("\n");
      break;
    case 1:
      trace.put(text.c_str());
      model.put(text.c_str());
      break;
    case 2:
      model.enabled = random() % 4 != 0;
      if (model.enabled) trace.enable();
      if (!model.enabled) trace.disable();
      break;
    default:
      trace.put(text.data(), static_cast<unsigned int>(text.size()));
      model.put(text);
      break;
  }
}

}  // namespace

TEST(TraceLines, RandomSequencesArriveAsTheModelSays) {
  std::mt19937 random(7);
  for (int sequence = 0; sequence < roundsOf(24'000); ++sequence) {
    tKeptLines kept;
    tOwnTrace trace(kept);
    tModel model;
    for (int step = 0; step < 40; ++step) act(random, trace, model);
    ASSERT_EQ(kept.pieces, model.pieces) << "sequence " << sequence;
  }
}
