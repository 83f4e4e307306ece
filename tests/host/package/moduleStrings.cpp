#include "package/windows/moduleStrings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "oxdiagk/version.h"
#include "patterns.h"

namespace {

std::vector<std::string> partsOfTheBuildString() {
  return partsOf(nOXDIAG100::kBuildString,
                 "([0-9.]+[dabf][0-9]+) "
                 "([0-9]{4}-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-5][0-9]) "
                 "oxdiagk/linux/x86_64/([^/ ]+)/([^/ ]+)");
}

}  // namespace

TEST(ModuleStrings, TheFileNameIsThatOfTheModuleOnWindows) {
  EXPECT_STREQ(nOXDIAG100::kModuleFileName, "oxdiagk.dll");
}

TEST(ModuleStrings, TheBuildStringHasAllItsParts) {
  EXPECT_EQ(partsOfTheBuildString().size(), 5u) << nOXDIAG100::kBuildString;
}

TEST(ModuleStrings, TheBuildStringBeginsWithTheVersionThatTheLibraryTells) {
  ASSERT_EQ(partsOfTheBuildString().size(), 5u) << nOXDIAG100::kBuildString;
  i32 status = 0;
  char text[tSSVersion::kMaxTextSize];
  EXPECT_EQ(partsOfTheBuildString()[1], nOXDIAG100::getCurrentVersion(status).toString(text));
}

TEST(ModuleStrings, TheBuildTimeIsAfterTheFirstSource) {
  ASSERT_EQ(partsOfTheBuildString().size(), 5u) << nOXDIAG100::kBuildString;
  EXPECT_GT(partsOfTheBuildString()[2], "2000-01-01 00:00:00");
}

TEST(ModuleStrings, TheBuildStringNamesTheCompilerThatCompiledThis) {
  ASSERT_EQ(partsOfTheBuildString().size(), 5u) << nOXDIAG100::kBuildString;
#ifdef __clang__
  EXPECT_EQ(partsOfTheBuildString()[3].substr(0, 5), "clang");
#else
  EXPECT_EQ(partsOfTheBuildString()[3].substr(0, 3), "g++");
#endif
}
