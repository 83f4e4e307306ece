// Option texts as the tools cut and join them, beside the library's own cut.

#include "options/optionText.h"

#include <gtest/gtest.h>

#include <random>

#include "slotbus/host/tOptionWordList.h"
#include "vexk/module.h"

namespace {

using tWords = std::vector<std::string>;

std::string randomText(std::mt19937& random, size_t length) {
  std::string_view const letters = "a-\" \t\n\v\f\r\x01\xFF";
  std::string text;
  while (text.size() < length) text += letters[random() % letters.size()];
  return text;
}

}  // namespace

TEST(OptionText, IsCutAsTheLibraryCutsIt) {
  std::mt19937 random(5);
  vexkInitialize();
  for (size_t length = 0; length < 12; ++length) {
    for (int round = 0; round < 2000; ++round) {
      std::string const text = randomText(random, length);
      EXPECT_EQ(splitOptionText(text), tOptionWordList(text).get()) << testing::PrintToString(text);
    }
  }
  vexkUnload();
}

TEST(OptionText, WordsThatAreJoinedAreCutToTheSame) {
  std::mt19937 random(6);
  for (int round = 0; round < 20000; ++round) {
    tWords words(random() % 4);
    for (std::string& word : words) word = randomText(random, random() % 5);
    auto const text = joinOptionWords(words);
    if (!text) continue;
    EXPECT_EQ(splitOptionText(*text), words) << testing::PrintToString(*text);
  }
}

TEST(OptionText, WordsAreQuotedWhereTheyNeedIt) {
  EXPECT_EQ(joinOptionWords({}), "");
  EXPECT_EQ(joinOptionWords({"--filter", "a b", "", "x"}), "--filter \"a b\" \"\" x");
  EXPECT_EQ(joinOptionWords({"a\"b"}), "a\"b");
  EXPECT_EQ(joinOptionWords({"\"a"}), std::nullopt);
  EXPECT_EQ(joinOptionWords({"a", "b \"c\""}), std::nullopt);
}
