#include "oxdiagk/tConfigurable.h"

#include "conformance/harness.h"

namespace {

using nOXDIAG100::tConfigurable;

// Keeps copies of the words of the last call: the words themselves are gone when it returns.
class tWordKeeper : public tConfigurable {
 public:
  using tConfigurable::configure;

  void configure() override { ++calls; }

  void configure(int argc, char** argv) override {
    ++calls;
    count = argc;
    length = 0;
    for (int index = 0; index < argc && argv != nullptr; ++index) {
      for (char const* character = argv[index]; *character != 0; ++character) keep(*character);
      keep('|');
      if (changesWords) argv[index][0] = '!';
    }
    words[length] = 0;
  }

  void inquire(char*, unsigned int, unsigned int*) override {}
  void pushConfiguration() override {}
  void popConfiguration() override {}

  static constexpr u32 kCapacity = 256;

  u32 calls = 0;
  int count = -1;
  bool changesWords = false;
  char words[kCapacity + 1] = {};  // each word followed by a bar, as far as there is room

 private:
  void keep(char character) {
    if (length < kCapacity) words[length++] = character;
  }

  u32 length = 0;
};

}  // namespace

TEST(Configurable, EmptyTextCallsTheParserOnceWithoutWords) {
  tWordKeeper keeper;
  keeper.configure("");
  EXPECT_EQ(keeper.calls, u32{1});
  EXPECT_EQ(keeper.count, 0);
}

TEST(Configurable, BlankTextCallsTheParserOnceWithoutWords) {
  tWordKeeper keeper;
  keeper.configure(" \t  \t");
  EXPECT_EQ(keeper.calls, u32{1});
  EXPECT_EQ(keeper.count, 0);
}

TEST(Configurable, ParserIsCalledOnceForAllWords) {
  tWordKeeper keeper;
  keeper.configure("a b c d");
  EXPECT_EQ(keeper.calls, u32{1});
  EXPECT_EQ(keeper.count, 4);
}

TEST(Configurable, FirstWordIsTheFirstArgument) {
  tWordKeeper keeper;
  keeper.configure("--checks off");
  EXPECT_EQ(keeper.count, 2);
  EXPECT_STREQ(keeper.words, "--checks|off|");
}

TEST(Configurable, EveryBlankCharacterSeparatesWords) {
  tWordKeeper keeper;
  keeper.configure("a b\tc\nd\ve\ff\rg");
  EXPECT_STREQ(keeper.words, "a|b|c|d|e|f|g|");
}

TEST(Configurable, OtherControlCharactersAreCharactersOfWords) {
  tWordKeeper keeper;
  keeper.configure(
      "a\x08"
      "b\x0E"
      "c\x1F"
      "d\x7F"
      "e");
  EXPECT_STREQ(keeper.words,
               "a\x08"
               "b\x0E"
               "c\x1F"
               "d\x7F"
               "e|");
}

TEST(Configurable, BytesAboveAsciiAreCharactersOfWords) {
  tWordKeeper keeper;
  keeper.configure(
      "a\x85"
      "b\xA0"
      "c\xFF"
      "d");
  EXPECT_STREQ(keeper.words,
               "a\x85"
               "b\xA0"
               "c\xFF"
               "d|");
}

TEST(Configurable, BlanksAroundTheWordsAreSkipped) {
  tWordKeeper keeper;
  keeper.configure(" \r\n --on \t\t x \n");
  EXPECT_STREQ(keeper.words, "--on|x|");
}

TEST(Configurable, QuotesKeepBlanksInOneWord) {
  tWordKeeper keeper;
  keeper.configure("--category  \"my own\"   --break on ");
  EXPECT_EQ(keeper.count, 4);
  EXPECT_STREQ(keeper.words, "--category|my own|--break|on|");
}

TEST(Configurable, ClosingQuoteNeedsNoBlankBehindIt) {
  tWordKeeper keeper;
  keeper.configure("\"a b\"c");
  EXPECT_EQ(keeper.count, 2);
  EXPECT_STREQ(keeper.words, "a b|c|");
}

TEST(Configurable, QuotedWordMayFollowQuotedWordDirectly) {
  tWordKeeper keeper;
  keeper.configure("\"a b\"\"c d\"");
  EXPECT_STREQ(keeper.words, "a b|c d|");
}

TEST(Configurable, PairOfQuotesIsAnEmptyWord) {
  tWordKeeper keeper;
  keeper.configure("a \"\" b");
  EXPECT_EQ(keeper.count, 3);
  EXPECT_STREQ(keeper.words, "a||b|");
}

TEST(Configurable, QuoteInsideAnUnquotedWordIsACharacter) {
  tWordKeeper keeper;
  keeper.configure("x\"y x\"a b");
  EXPECT_STREQ(keeper.words, "x\"y|x\"a|b|");
}

TEST(Configurable, QuoteThatIsNotClosedTakesTheRest) {
  tWordKeeper keeper;
  keeper.configure("a \"b c ");
  EXPECT_EQ(keeper.count, 2);
  EXPECT_STREQ(keeper.words, "a|b c |");
}

TEST(Configurable, LoneQuoteIsAnEmptyWord) {
  tWordKeeper keeper;
  keeper.configure("\"");
  EXPECT_EQ(keeper.count, 1);
  EXPECT_STREQ(keeper.words, "|");
}

TEST(Configurable, QuotesKeepEveryBlankCharacter) {
  tWordKeeper keeper;
  keeper.configure("\"\t \n\v\"");
  EXPECT_STREQ(keeper.words, "\t \n\v|");
}

TEST(Configurable, BackslashDoesNotEscape) {
  tWordKeeper keeper;
  keeper.configure("\"a\\\"b\" c\\ d");
  EXPECT_STREQ(keeper.words, "a\\|b\"|c\\|d|");
}

TEST(Configurable, TextOfTheCallerIsUnchanged) {
  tWordKeeper keeper;
  keeper.changesWords = true;
  char text[] = "--category \"a b\" c";
  keeper.configure(text);
  EXPECT_STREQ(text, "--category \"a b\" c");
  EXPECT_EQ(keeper.count, 3);
}

TEST(Configurable, ThousandWordsAreCounted) {
  static constinit char text[2001] = {};
  for (u32 index = 0; index < 1000; ++index) {
    text[2 * index] = 'w';
    text[2 * index + 1] = ' ';
  }
  tWordKeeper keeper;
  keeper.configure(text);
  EXPECT_EQ(keeper.count, 1000);
  EXPECT_EQ(keeper.calls, u32{1});
}

TEST(Configurable, CallThroughTheBaseReachesTheParserOfTheObject) {
  tWordKeeper keeper;
  tConfigurable& configurable = keeper;
  configurable.configure("--on");
  EXPECT_STREQ(keeper.words, "--on|");
}
