#include "oxdiagk/tLineShape.h"

#include "conformance/harness.h"

namespace {

using nOXDIAG100::tLineShape;

constexpr u32 kGreatestWidth = 0xFFFFFFFF;

tLineShape::tSwitch switchAt(u32 place) {
  return static_cast<tLineShape::tSwitch>(place);
}

// Whether one switch turned makes no other one, nor the width, another.
bool isTurnedAlone(u32 place, bool isOn) {
  tLineShape const before = tLineShape::atStart();
  tLineShape const after = before.with(switchAt(place), isOn);
  for (u32 other = 0; other <= tLineShape::kEnabled; ++other) {
    bool const wanted = other == place ? isOn : before.isOn(switchAt(other));
    if (after.isOn(switchAt(other)) != wanted) return false;
  }
  return after.getWidth() == before.getWidth();
}

tLineShape without(tLineShape shape, tLineShape::tSwitch which) {
  return shape.with(which, false);
}

}  // namespace

TEST(LineShape, AtTheStartComponentLineAndFileAreShown) {
  tLineShape const shape = tLineShape::atStart();
  EXPECT_TRUE(shape.isOn(tLineShape::kEnabled) && shape.isOn(tLineShape::kComponentName));
  EXPECT_TRUE(shape.isOn(tLineShape::kLineNumber) && shape.isOn(tLineShape::kFileName));
  EXPECT_TRUE(shape.isOn(tLineShape::kIndenting) && shape.isOn(tLineShape::kTruncation));
  EXPECT_FALSE(shape.isOn(tLineShape::kMutex) || shape.showsTime());
  EXPECT_EQ(u32{50}, shape.getWidth());
  EXPECT_TRUE(shape.isStandard() && shape.isHiddenQuietly() && shape.hasFields());
}

TEST(LineShape, EachSwitchTurnsAlone) {
  for (u32 place = 0; place <= tLineShape::kEnabled; ++place) {
    EXPECT_TRUE(isTurnedAlone(place, true));
    EXPECT_TRUE(isTurnedAlone(place, false));
  }
}

TEST(LineShape, TheWidthTakesAnyValueAndLeavesTheSwitches) {
  tLineShape const shape = tLineShape::atStart();
  EXPECT_EQ(kGreatestWidth, shape.withWidth(kGreatestWidth).getWidth());
  EXPECT_EQ(u32{0}, shape.withWidth(kGreatestWidth).withWidth(0).getWidth());
  EXPECT_EQ(shape.getWord(), shape.withWidth(kGreatestWidth).withWidth(0).withWidth(50).getWord());
  EXPECT_TRUE(shape.withWidth(0).isStandard() && shape.withWidth(kGreatestWidth).isStandard());
}

TEST(LineShape, AnythingElseInThePrefixIsNotStandard) {
  for (u32 place = 0; place <= tLineShape::kEnabled; ++place) {
    tLineShape const shape = tLineShape::atStart();
    tLineShape const turned = shape.with(switchAt(place), !shape.isOn(switchAt(place)));
    bool const isOutside = place == tLineShape::kMutex || place == tLineShape::kIndenting ||
                           place == tLineShape::kEnabled;
    EXPECT_EQ(isOutside, turned.isStandard());
  }
}

TEST(LineShape, TheTimesAreWhatNeedsTheCounter) {
  for (u32 place = 0; place <= tLineShape::kEnabled; ++place) {
    bool const isTime = place == tLineShape::kTimeStamp || place == tLineShape::kTimeDelta;
    EXPECT_EQ(isTime, tLineShape::atStart().with(switchAt(place), true).showsTime());
  }
}

TEST(LineShape, MutexAndTimeDeltaMakeAHiddenLineLeaveSomething) {
  for (u32 place = 0; place <= tLineShape::kEnabled; ++place) {
    bool const leaves = place == tLineShape::kMutex || place == tLineShape::kTimeDelta;
    EXPECT_EQ(!leaves, tLineShape::atStart().with(switchAt(place), true).isHiddenQuietly());
  }
}

TEST(LineShape, WithoutItsFieldsAPrefixIsBlank) {
  tLineShape shape = without(tLineShape::atStart(), tLineShape::kComponentName);
  shape = without(shape, tLineShape::kLineNumber);
  EXPECT_TRUE(shape.hasFields());
  shape = without(shape, tLineShape::kFileName).with(tLineShape::kFilePath, true);
  EXPECT_FALSE(shape.hasFields());
  EXPECT_TRUE(shape.with(tLineShape::kVerbosity, true).hasFields());
}
