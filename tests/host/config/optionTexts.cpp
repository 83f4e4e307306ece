// Cutting words in place where there is just room for them, and counting what is not written.

#include <gtest/gtest.h>

#include <string>

#include "config/options/tInquiryText.h"
#include "config/options/tOptionWords.h"

namespace {

using nOXDIAG100::cutOptionWords;
using nOXDIAG100::tInquiryText;

}  // namespace

TEST(CutOptionWords, AsManyWordsAsThereIsRoomForAreCut) {
  char text[] = "one \"two three\" four";
  char* words[3] = {};
  ASSERT_EQ(cutOptionWords(text, words, 3), 3);
  EXPECT_STREQ(words[0], "one");
  EXPECT_STREQ(words[1], "two three");
  EXPECT_STREQ(words[2], "four");
}

TEST(CutOptionWords, OneWordMoreLeavesTheTextAsItIs) {
  char text[] = "one two three";
  char* words[2] = {};
  EXPECT_EQ(cutOptionWords(text, words, 2), -1);
  EXPECT_STREQ(text, "one two three");
  EXPECT_EQ(words[0], nullptr);
}

TEST(CutOptionWords, NoWordsNeedNoRoom) {
  char text[] = " \t ";
  EXPECT_EQ(cutOptionWords(text, nullptr, 0), 0);
}

TEST(InquiryText, APieceThatIsWrittenByAnotherIsSkipped) {
  char buffer[] = "....piece.";
  tInquiryText text(buffer, sizeof(buffer));
  text.append("one ").skip(sizeof("piece")).append("!");
  unsigned int needed = 0;
  text.finish(&needed);
  EXPECT_STREQ(buffer, "one piece!");
  EXPECT_EQ(needed, sizeof("one piece!"));
}

TEST(InquiryText, APieceThatNeedsNothingIsNoPiece) {
  char buffer[8];
  tInquiryText text(buffer, sizeof(buffer));
  text.append("one").skip(0).append("two");
  unsigned int needed = 0;
  text.finish(&needed);
  EXPECT_STREQ(buffer, "onetwo");
  EXPECT_EQ(needed, sizeof("onetwo"));
}

TEST(InquiryText, OfAPieceBeyondTheRoomOnlyTheLengthCounts) {
  char buffer[] = "....";
  tInquiryText text(buffer, 4);
  text.append("ab").skip(100);
  unsigned int needed = 0;
  EXPECT_EQ(text.finish(&needed), buffer + 4);
  EXPECT_EQ(std::string(buffer, 4), std::string("ab.\0", 4));
  EXPECT_EQ(needed, 102u);
}
