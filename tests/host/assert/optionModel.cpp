// Random option lists, read by the library and by a model of it. For any state that options can
// reach, configure(inquire()) gives the same state and a pop what was at the push, but for names
// that the inquired text cannot say: empty ones, those that begin with a double quote, and those
// with a blank or a control character like it. The first property has them, the other two do not.

#include <random>

#include "assert/tAssertModel.h"
#include "rounds.h"
#include "support/assertSwitches.h"
#include "trace/startedModules.h"

namespace {

// In every build: a round takes most of a millisecond under the sanitizers. The fuzz target
// assertionOptions goes on from here.
constexpr int kRounds = roundsOf(100'000);
constexpr int kRoundsOfSeries = roundsOf(25'000);
constexpr u32 kMostWords = 16;
constexpr int kListsForOneObject = 5;

class tGenerator {
 public:
  explicit tGenerator(u32 seed) : random(seed) {}

  u32 below(u32 limit) { return static_cast<u32>(random() % limit); }

  std::string oneOf(std::initializer_list<char const*> words) {
    return words.begin()[below(static_cast<u32>(words.size()))];
  }

  std::string word(bool mayBeOdd) {
    switch (below(8)) {
      case 0:
      case 1:
        return "--category";
      case 2:
        return oneOf({"default", "warning", "statusWarning", "statusFatal", "rack", "a", "b-c"});
      case 3:
        return oneOf({"on", "off"});
      case 4:
        return oneOf({"--", "--Checks", "--check", "-checks", "x\"y", "\x80\xFF", "-x", "On"});
      case 5:
        return mayBeOdd ? oneOf({"", " ", "x y", "\"", "\"q", "\t", "on\n"}) : "off";
      default:
        return oneOf({"--terminate", "--break", "--preconditions", "--postconditions",
                      "--classinvariants", "--loopinvariants", "--checks", "--exceptions"});
    }
  }

  tWords list(bool mayBeOdd) {
    tWords words;
    for (u32 count = below(kMostWords + 1); count != 0; --count) words.push_back(word(mayBeOdd));
    return words;
  }

 private:
  std::mt19937 random;
};

void configure(tPrivateContracts& contracts, tWords words) {
  std::vector<char*> vector;
  for (std::string& word : words) vector.push_back(word.data());
  contracts.configure(static_cast<int>(vector.size()), vector.data());
}

// In one call, into room for more categories than the lists can make.
std::string inquiredText(tPrivateContracts& contracts) {
  static char text[32'768];
  unsigned int needed = 0;
  contracts.inquire(text, sizeof(text), &needed);
  EXPECT_LE(needed, sizeof(text));
  return text;
}

}  // namespace

TEST(AssertOptionModel, AnyListsOfWordsAreReadAsByTheModel) {
  tGenerator generator(1);
  for (int round = 0; round < kRoundsOfSeries; round += kListsForOneObject) {
    tPrivateContracts contracts;
    tAssertModel model;
    for (int list = 0; list < kListsForOneObject; ++list) {
      tWords const words = generator.list(true);
      configure(contracts, words);
      model.configure(words);
      ASSERT_EQ(inquiredText(contracts), model.text()) << testing::PrintToString(words);
    }
  }
}

TEST(AssertOptionModel, EveryStateThatAListReachesIsThatOfTheModelAndComesBack) {
  tGenerator generator(2);
  int withNewCategory = 0;
  for (int round = 0; round < kRounds; ++round) {
    tWords const words = generator.list(false);
    tPrivateContracts source;
    configure(source, words);
    tAssertModel model;
    model.configure(words);
    std::string const given = inquiredText(source);
    ASSERT_EQ(given, model.text()) << testing::PrintToString(words);
    tPrivateContracts target;
    target.configure(given.c_str());
    ASSERT_EQ(inquiredText(target), given) << testing::PrintToString(words);
    withNewCategory += given.find("rack") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(withNewCategory, kRounds / 100) << "the generator makes too few categories";
}

TEST(AssertOptionModel, PushesAndPopsBetweenListsAreThoseOfTheModel) {
  tGenerator generator(3);
  for (int round = 0; round < kRoundsOfSeries; round += kListsForOneObject) {
    tPrivateContracts contracts;
    tAssertModel model;
    for (int list = 0; list < kListsForOneObject; ++list) {
      u32 const choice = generator.below(3);
      if (choice == 0) {
        contracts.pushConfiguration();
        model.push();
      } else if (choice == 1) {
        contracts.popConfiguration();
        model.pop();
      }
      tWords const words = generator.list(false);
      configure(contracts, words);
      model.configure(words);
      ASSERT_EQ(inquiredText(contracts), model.text()) << testing::PrintToString(words);
    }
  }
}
