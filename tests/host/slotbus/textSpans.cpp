#include <gtest/gtest.h>

#include <string>

#include "slotbus/component/tTextSpan.h"
#include "slotbusSupport.h"

using nSLOTBUS100::tTextSpan;

namespace {

tTextSpan spanOf(std::string const& text) {
  return tTextSpan(text.data(), text.size());
}

}  // namespace

TEST(SlotbusTextSpan, ADefaultSpanIsEmpty) {
  EXPECT_TRUE(tTextSpan().isEmpty());
  EXPECT_TRUE(tTextSpan().getTrimmed().isEmpty());
  EXPECT_FALSE(tTextSpan().contains('a'));
  EXPECT_TRUE(tTextSpan().beginsWith(""));
}

TEST(SlotbusTextSpan, TrimmingTakesBlanksAndTabsAtBothEnds) {
  std::string const text = " \t a b\t ";
  EXPECT_EQ(textOf(spanOf(text).getTrimmed()), "a b");
}

TEST(SlotbusTextSpan, TrimmingBlanksOnlyLeavesNothing) {
  std::string const text = " \t ";
  EXPECT_TRUE(spanOf(text).getTrimmed().isEmpty());
}

TEST(SlotbusTextSpan, TakeUntilCutsBeforeTheSeparatorAndDropsIt) {
  std::string const text = "one|two|";
  tTextSpan rest = spanOf(text);
  EXPECT_EQ(textOf(rest.takeUntil('|')), "one");
  EXPECT_EQ(textOf(rest.takeUntil('|')), "two");
  EXPECT_TRUE(rest.isEmpty());
  EXPECT_TRUE(rest.takeUntil('|').isEmpty());
}

TEST(SlotbusTextSpan, TakeUntilWithoutSeparatorTakesAll) {
  std::string const text = "one";
  tTextSpan rest = spanOf(text);
  EXPECT_EQ(textOf(rest.takeUntil('|')), "one");
  EXPECT_TRUE(rest.isEmpty());
}

TEST(SlotbusTextSpan, NulIsAnOrdinaryCharacter) {
  std::string const text("a\0b|c", 5);
  tTextSpan rest = spanOf(text);
  EXPECT_TRUE(rest.contains('\0'));
  EXPECT_EQ(rest.takeUntil('|').getLength(), 3U);
}

TEST(SlotbusTextSpan, BeginsWithNeedsTheWholePrefix) {
  std::string const text = "0x";
  EXPECT_TRUE(spanOf(text).beginsWith("0x"));
  EXPECT_TRUE(spanOf(text).beginsWith("0"));
  EXPECT_FALSE(spanOf(text).beginsWith("0x1"));
  EXPECT_FALSE(spanOf(text).beginsWith("x"));
}

TEST(SlotbusTextSpan, GetFirstIsCutToTheText) {
  std::string const text = "abc";
  EXPECT_EQ(textOf(spanOf(text).getFirst(2)), "ab");
  EXPECT_EQ(textOf(spanOf(text).getFirst(3)), "abc");
  EXPECT_EQ(textOf(spanOf(text).getFirst(4)), "abc");
}

TEST(SlotbusTextSpan, GetBehindLeavesTheRest) {
  std::string const text = "abc";
  EXPECT_EQ(textOf(spanOf(text).getBehind(1)), "bc");
  EXPECT_TRUE(spanOf(text).getBehind(3).isEmpty());
}
