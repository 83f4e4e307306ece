// Settings as another program tells them, however many they are.

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "oxdiagctl/tSettings.h"

namespace {

constexpr int kCategories = 10'000;

std::string settingsOf(char const* value) {
  std::string text;
  for (int number = 0; number < kCategories; ++number) {
    text += " --category c" + std::to_string(number);
    for (char const* option : {"--break", "--checks", "--trace"}) {
      text += std::string(" ") + option + " " + value;
    }
  }
  return text;
}

}  // namespace

TEST(ToldSettings, OfVeryManyCategoriesTakeNoTimeToSpeakOf) {
  std::clock_t const begin = std::clock();
  tSettings const before(settingsOf("off"));
  tSettings const now(settingsOf("on"));
  std::string const changes = now.describeChangesSince(before);
  std::string const table = now.describe(kAssertLanguage);
  EXPECT_LT(std::clock() - begin, 5 * CLOCKS_PER_SEC);
  EXPECT_NE(changes.find("\nc9999  --trace   off -> on\n"), std::string::npos);
  EXPECT_EQ(std::count(changes.begin(), changes.end(), '\n'), 3 * kCategories);
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 4);
}

TEST(ToldSettings, AnOptionThatIsToldTwiceIsTakenAsAtFirst) {
  tSettings const now("--break on --break off --on");
  EXPECT_EQ(now.getValue("--break"), "on");
  EXPECT_EQ(now.getValue("--checks"), "");
  EXPECT_EQ(tSettings("--on").describeChangesSince(now),
            "--break  on -> (none)\n--break  off -> (none)\n");
}
