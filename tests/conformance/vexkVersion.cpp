#include "conformance/harness.h"
#include "vexk/statusCodes.h"
#include "vexk/tSSVersion.h"

namespace {

constexpr tSSVersion released(u32 major, u32 minor, u32 update, u32 build) {
  return tSSVersion(major, minor, update, tSSVersion::kPhaseReleased, build, 0);
}

constexpr tSSVersion ofPhase(u32 phase) {
  return tSSVersion(1, 0, 0, static_cast<tSSVersion::tPhase>(phase), 0, 0);
}

// Whether each of the two is on its side of the other, by every operator.
bool isOlder(tSSVersion older, tSSVersion newer) {
  return older.compare(newer) < 0 && newer.compare(older) > 0 && older < newer && older <= newer &&
         newer > older && newer >= older && older != newer && !(older == newer) &&
         !(newer < older) && !(newer <= older) && !(older > newer) && !(older >= newer);
}

}  // namespace

TEST(VexkVersion, PacksItsFieldsFromTheMostSignificantBit) {
  EXPECT_EQ(u32{0x01000000}, tSSVersion(1, 0, 0, tSSVersion::kPhaseDevelopment, 0, 0).getPacked());
  EXPECT_EQ(u32{0x01001007}, released(1, 0, 0, 7).getPacked());
  EXPECT_EQ(u32{0x12341ABC}, released(0x12, 3, 4, 0xABC).getPacked());
}

TEST(VexkVersion, GivesBackEveryFieldOfThePackedForm) {
  tSSVersion const version(0xFE983ABC);
  EXPECT_EQ(u32{0xFE}, version.getMajor());
  EXPECT_EQ(u32{9}, version.getMinor());
  EXPECT_EQ(u32{8}, version.getUpdate());
  EXPECT_TRUE(version.getPhase() == tSSVersion::kPhaseAlpha);
  EXPECT_EQ(u32{0xABC}, version.getBuild());
  EXPECT_EQ(u32{0xFE983ABC}, version.getPacked());
}

TEST(VexkVersion, KeepsOnlyTheBitsOfEachField) {
  tSSVersion const version(0x1FF, 0x1F, 0x1F, static_cast<tSSVersion::tPhase>(0x1F), 0x1FFF,
                           0xFFFFFFFF);
  EXPECT_EQ(u32{0xFFFFFFFF}, version.getPacked());
  EXPECT_EQ(
      u32{0},
      tSSVersion(0x100, 0x10, 0x10, static_cast<tSSVersion::tPhase>(0x10), 0x1000, 1).getPacked());
}

TEST(VexkVersion, DefaultIsZero) {
  EXPECT_EQ(u32{0}, tSSVersion().getPacked());
}

TEST(VexkVersion, IsFourBytes) {
  EXPECT_EQ(size_t{4}, sizeof(tSSVersion));
}

TEST(VexkVersion, WritesTheFirstCompatibleVersion) {
  char text[tSSVersion::kMaxTextSize];
  EXPECT_STREQ("1.0.0f7", released(1, 0, 0, 7).toString(text));
}

TEST(VexkVersion, WritesALetterForEachPhase) {
  char text[tSSVersion::kMaxTextSize];
  EXPECT_STREQ("1.0.0d0", ofPhase(0).toString(text));
  EXPECT_STREQ("1.0.0f0", ofPhase(1).toString(text));
  EXPECT_STREQ("1.0.0b0", ofPhase(2).toString(text));
  EXPECT_STREQ("1.0.0a0", ofPhase(3).toString(text));
  for (u32 phase = 4; phase < 16; ++phase) {
    EXPECT_STREQ("1.0.0x0", ofPhase(phase).toString(text));
  }
}

TEST(VexkVersion, WritesNumbersOnBothSidesOfASecondDigit) {
  char text[tSSVersion::kMaxTextSize];
  EXPECT_STREQ("9.9.9f9", released(9, 9, 9, 9).toString(text));
  EXPECT_STREQ("10.10.10f10", released(10, 10, 10, 10).toString(text));
  EXPECT_STREQ("11.11.11f11", released(11, 11, 11, 11).toString(text));
}

TEST(VexkVersion, TheLongestTextFits) {
  char text[tSSVersion::kMaxTextSize];
  EXPECT_STREQ("255.15.15x4095", tSSVersion(0xFFFFFFFF).toString(text));
}

TEST(VexkVersion, TextIsCutAndTerminatedAtEverySize) {
  char const whole[] = "12.3.4f567";
  constexpr u32 kFull = sizeof whole;
  for (u32 size = 1; size <= kFull + 1; ++size) {
    char text[kFull + 2];
    for (char& character : text) character = '?';
    released(12, 3, 4, 567).toStringInterface(text, size);
    u32 const length = size < kFull ? size - 1 : kFull - 1;
    EXPECT_EQ('\0', text[length]);
    bool same = true;
    for (u32 i = 0; i < length; ++i) same = same && text[i] == whole[i];
    EXPECT_TRUE(same);
    EXPECT_EQ('?', text[length + 1]);
  }
}

TEST(VexkVersion, TextIntoNothingWritesNothing) {
  char text[1] = {'?'};
  released(1, 0, 0, 7).toStringInterface(text, 0);
  EXPECT_EQ('?', text[0]);
  released(1, 0, 0, 7).toStringInterface(nullptr, 10);
}

TEST(VexkVersion, EarlierFieldsWeighMore) {
  EXPECT_TRUE(isOlder(released(1, 15, 15, 4095), released(2, 0, 0, 0)));
  EXPECT_TRUE(isOlder(released(1, 0, 15, 4095), released(1, 1, 0, 0)));
  EXPECT_TRUE(isOlder(released(1, 0, 0, 4095), released(1, 0, 1, 0)));
  EXPECT_TRUE(isOlder(released(1, 0, 0, 6), released(1, 0, 0, 7)));
  EXPECT_TRUE(isOlder(released(127, 0, 0, 0), released(255, 0, 0, 0)));
}

TEST(VexkVersion, PhasesComeInOrderOfRelease) {
  u32 const order[] = {4,
                       5,
                       6,
                       7,
                       8,
                       9,
                       10,
                       11,
                       12,
                       13,
                       14,
                       15,
                       tSSVersion::kPhaseDevelopment,
                       tSSVersion::kPhaseAlpha,
                       tSSVersion::kPhaseBeta,
                       tSSVersion::kPhaseReleased};
  for (u32 older = 0; older < 16; ++older) {
    for (u32 newer = older + 1; newer < 16; ++newer) {
      EXPECT_TRUE(isOlder(ofPhase(order[older]), ofPhase(order[newer])));
    }
  }
}

TEST(VexkVersion, ThePhaseWeighsMoreThanTheBuild) {
  EXPECT_TRUE(isOlder(tSSVersion(1, 0, 0, tSSVersion::kPhaseBeta, 4095, 0), released(1, 0, 0, 0)));
}

TEST(VexkVersion, EqualVersionsCompareAsEqual) {
  tSSVersion const version = released(1, 2, 3, 4);
  EXPECT_EQ(i32{0}, version.compare(released(1, 2, 3, 4)));
  EXPECT_TRUE(version == released(1, 2, 3, 4));
  EXPECT_TRUE(version <= released(1, 2, 3, 4));
  EXPECT_TRUE(version >= released(1, 2, 3, 4));
  EXPECT_FALSE(version < released(1, 2, 3, 4));
  EXPECT_FALSE(version > released(1, 2, 3, 4));
}

TEST(VexkVersionCheck, ARangeInsideTheInstalledOneFits) {
  EXPECT_EQ(i32{0}, tSSVersion::check(released(1, 5, 0, 0), released(1, 2, 0, 0),
                                      released(2, 0, 0, 0), released(1, 0, 0, 7)));
}

TEST(VexkVersionCheck, TheBoundsBelongToTheRange) {
  tSSVersion const current = released(2, 0, 0, 0);
  tSSVersion const compatible = released(1, 0, 0, 7);
  EXPECT_EQ(i32{0}, tSSVersion::check(released(3, 0, 0, 0), current, current, compatible));
  EXPECT_EQ(i32{0}, tSSVersion::check(compatible, released(0, 1, 0, 0), current, compatible));
  EXPECT_EQ(i32{0}, tSSVersion::check(current, current, current, current));
}

TEST(VexkVersionCheck, AClientThatNeedsANewerOneFails) {
  EXPECT_EQ(kStatusVersionMismatch, tSSVersion::check(released(3, 0, 0, 0), released(2, 0, 0, 1),
                                                      released(2, 0, 0, 0), released(1, 0, 0, 7)));
}

TEST(VexkVersionCheck, AClientThatIsTooOldFails) {
  EXPECT_EQ(kStatusVersionMismatch, tSSVersion::check(released(1, 0, 0, 6), released(1, 0, 0, 0),
                                                      released(2, 0, 0, 0), released(1, 0, 0, 7)));
}

TEST(VexkVersionCheck, AClientBuiltForANewerOneThatAcceptsOlderFits) {
  EXPECT_EQ(i32{0}, tSSVersion::check(released(9, 0, 0, 0), released(0, 0, 0, 0),
                                      released(2, 0, 0, 0), released(1, 0, 0, 7)));
}
