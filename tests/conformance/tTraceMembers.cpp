// What debuggers find in a trace stream, beside the word that its lines go by.

#include "conformance/harness.h"
#include "oxdiagk/tTraceParts.h"
#include "support/recordingDestination.h"

namespace {

using nOXDIAG100::tLineShape;
using nOXDIAG100::tTraceParts;

tLineShape::tSwitch switchAt(u32 place) {
  return static_cast<tLineShape::tSwitch>(place);
}

bool areAsTheShapeIs(tTraceParts const& parts) {
  tLineShape const shape = parts.getShape();
  for (u32 place = 0; place < tLineShape::kSwitchCount; ++place) {
    if (parts.switches[place] != (shape.isOn(switchAt(place)) ? 1u : 0u)) return false;
  }
  return parts.enabled == (shape.isOn(tLineShape::kEnabled) ? 1u : 0u) &&
         parts.minPrefixWidth == shape.getWidth();
}

class TraceMembers : public oxt::tFixture {
 protected:
  ~TraceMembers() { delete parts.filter; }

  tRecordingDestination recorder;
  tTraceParts parts{recorder};
};

}  // namespace

TEST_F(TraceMembers, AtTheStartThreeFieldsIndentingAndTruncationAreOn) {
  EXPECT_TRUE(areAsTheShapeIs(parts));
  EXPECT_EQ(u32{1}, parts.enabled);
  EXPECT_EQ(u32{1}, parts.switches[tLineShape::kLineNumber]);
  EXPECT_EQ(u32{0}, parts.switches[tLineShape::kTimeStamp]);
  EXPECT_EQ(u32{50}, parts.minPrefixWidth);
}

TEST_F(TraceMembers, EachSwitchHasItsOwn) {
  for (u32 place = 0; place < tLineShape::kSwitchCount; ++place) {
    parts.turn(switchAt(place), true);
    EXPECT_EQ(u32{1}, parts.switches[place]);
    EXPECT_TRUE(areAsTheShapeIs(parts));
    parts.turn(switchAt(place), false);
    EXPECT_EQ(u32{0}, parts.switches[place]);
    EXPECT_TRUE(areAsTheShapeIs(parts));
  }
}

TEST_F(TraceMembers, TheMasterSwitchIsBesideThem) {
  parts.turn(tLineShape::kEnabled, false);
  EXPECT_EQ(u32{0}, parts.enabled);
  EXPECT_TRUE(areAsTheShapeIs(parts));
  parts.turn(tLineShape::kEnabled, true);
  EXPECT_EQ(u32{1}, parts.enabled);
}

TEST_F(TraceMembers, TheWidthIsAsItWasSet) {
  parts.setWidth(7);
  EXPECT_EQ(u32{7}, parts.minPrefixWidth);
  EXPECT_TRUE(areAsTheShapeIs(parts));
}

TEST_F(TraceMembers, OfAStreamAtRestNothingIsTurned) {
  tTraceParts resting{nOXDIAG100::tAtRest()};
  EXPECT_TRUE(areAsTheShapeIs(resting));
  EXPECT_EQ(u32{0}, resting.enabled);
  resting.turn(tLineShape::kEnabled, true);
  resting.turn(tLineShape::kTimeStamp, true);
  resting.setWidth(7);
  EXPECT_EQ(u32{0}, resting.enabled);
  EXPECT_EQ(u32{0}, resting.switches[tLineShape::kTimeStamp]);
  EXPECT_EQ(u32{50}, resting.minPrefixWidth);
}
