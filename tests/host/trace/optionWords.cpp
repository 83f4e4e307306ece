// Cutting option text into words, against a model, and with exhausted memory.

#include <random>

#include "oxdiagk/tConfigurable.h"
#include "rounds.h"
#include "startedModules.h"
#include "trace/modelWords.h"

namespace {

using nOXDIAG100::tConfigurable;
class tWordKeeper : public tConfigurable {
 public:
  using tConfigurable::configure;

  void configure() override {}
  void configure(int argc, char** argv) override {
    ++calls;
    count = argc;
    vector = argv;
    if (argv != nullptr) words.assign(argv, argv + argc);
  }
  void inquire(char*, unsigned int, unsigned int*) override {}
  void pushConfiguration() override {}
  void popConfiguration() override {}

  int calls = 0;
  int count = -1;
  char** vector = nullptr;
  tWords words;
};

std::string randomWords(std::mt19937& random) {
  static std::string const alphabet = "\"\"\"    \t\n\v\f\rab-=\x08\x0E\x85\xA0\xFF\x7F\x1F";
  std::string text(random() % 40, ' ');
  for (char& character : text) character = alphabet[random() % alphabet.size()];
  return text;
}

}  // namespace

TEST(OptionWords, RandomTextsAreCutAsTheModelSays) {
  std::mt19937 random(20240521);
  for (int round = 0; round < roundsOf(200'000); ++round) {
    std::string const text = randomWords(random);
    tWordKeeper keeper;
    keeper.configure(text.c_str());
    ASSERT_EQ(keeper.calls, 1);
    ASSERT_EQ(keeper.words, modelWords(text)) << testing::PrintToString(text);
  }
}

TEST(OptionWords, VeryLongTextIsCut) {
  std::string text;
  for (int index = 0; index < 100'000; ++index) text += "--option" + std::to_string(index) + " ";
  tWordKeeper keeper;
  keeper.configure(text.c_str());
  ASSERT_EQ(keeper.count, 100'000);
  EXPECT_EQ(keeper.words.back(), "--option99999");
}

TEST(OptionWords, NothingIsLeftBehind) {
  u64 const before = ntoshost::outstandingBlocks();
  tWordKeeper keeper;
  keeper.configure("a \"b c\" d");
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}

TEST(OptionWords, BlankTextAllocatesNothing) {
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  tWordKeeper keeper;
  keeper.configure(" \t ");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
  EXPECT_EQ(keeper.calls, 1);
}

TEST(OptionWords, WordsTakeOneAllocation) {
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  tWordKeeper keeper;
  keeper.configure("a b c");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 1u);
}

TEST(OptionWords, ParserIsCalledWithoutWordsWhenMemoryIsExhausted) {
  u64 const before = ntoshost::outstandingBlocks();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [](u64) {
    tWordKeeper keeper;
    keeper.configure("--a \"b c\"");
    EXPECT_EQ(keeper.calls, 1);
    if (ntoshost::faultsInjected() == 0) return;
    EXPECT_EQ(keeper.count, 0);
    EXPECT_EQ(keeper.vector, nullptr);
  });
  EXPECT_EQ(failures, 1u);
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
}
