// What the module says about itself to the platform's wrappers.

#include <gtest/gtest.h>

#include <string>

#include "ntos/status.h"
#include "tImage.h"
#include "tPlatform.h"

namespace {

// The C++ library's own wide text has units of 32 bits.
using tWideText = std::u16string;

// A path of so many characters, no two neighbours of which are the same.
tWideText makePath(size_t length) {
  tWideText path;
  for (size_t index = 0; index < length; ++index) {
    path += static_cast<char16_t>('A' + index % 26);
  }
  return path;
}

// Loads with this path, which is gone afterwards, and gives the record.
tModulePackage const& loadWith(tImage const& image, tWideText path) {
  UNICODE_STRING key = {static_cast<u16>(path.size() * 2), static_cast<u16>(path.size() * 2),
                        reinterpret_cast<wchar_t*>(path.data())};
  EXPECT_EQ(image.initialise(&key), STATUS_SUCCESS);
  path.assign(path.size(), u'?');
  return *image.setLegacyWrapperLoadState(1);
}

tWideText pathOf(tModulePackage const& package) {
  return tWideText(reinterpret_cast<char16_t*>(package.registryPath.Buffer),
                   package.registryPath.Length / 2u);
}

class ModuleRecord : public testing::Test {
 protected:
  tPlatform platform;
  tImage image;
};

class ModulePath : public testing::TestWithParam<size_t> {};

}  // namespace

TEST_P(ModulePath, IsKeptWhole) {
  tPlatform const platform;
  tImage const image;
  size_t const length = GetParam();
  tModulePackage const& package = loadWith(image, makePath(length));
  EXPECT_TRUE(pathOf(package) == makePath(length));
  EXPECT_TRUE(length == 260 || package.registryPathText[length] == L'\0');
  EXPECT_EQ(package.wdmWrapperState, 0u);
  image.unload();
}

INSTANTIATE_TEST_SUITE_P(UpTo260Characters, ModulePath, testing::Values(0, 1, 2, 258, 259, 260));

TEST_F(ModuleRecord, CutsALongerPath) {
  tModulePackage const& package = loadWith(image, makePath(261));
  EXPECT_TRUE(pathOf(package) == makePath(260));
  EXPECT_EQ(package.registryPath.Length, 520u);
  EXPECT_EQ(package.wdmWrapperState, 0u);
  image.unload();
}

TEST_F(ModuleRecord, CutsTheLongestPathThereIs) {
  tModulePackage const& package = loadWith(image, makePath(32767));
  EXPECT_TRUE(pathOf(package) == makePath(260));
  EXPECT_EQ(package.wdmWrapperState, 0u);
  EXPECT_EQ(package.legacyWrapperState, 1u);
  image.unload();
}

TEST_F(ModuleRecord, HasAnEmptyPathWithoutOne) {
  ASSERT_EQ(image.initialise(nullptr), STATUS_SUCCESS);
  tModuleText const& path = image.setLegacyWrapperLoadState(0)->registryPath;
  EXPECT_EQ(path.Length, 0u);
  EXPECT_EQ(path.MaximumLength, 520u);
  EXPECT_EQ(static_cast<void const*>(path.Buffer),
            image.setLegacyWrapperLoadState(0)->registryPathText);
  image.unload();
}

TEST_F(ModuleRecord, TellsWhoTheModuleIs) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  tModulePackage const& package = *image.setLegacyWrapperLoadState(0);
  EXPECT_EQ(package.format, 1u);
  EXPECT_EQ(package.reserved, 0u);
  EXPECT_EQ(package.identity->format, 6u);
  EXPECT_STREQ(package.identity->name, "oxdiagk");
  EXPECT_STREQ(package.identity->fileName, "oxdiagk.dll");
  EXPECT_NE(std::string(package.identity->buildString).find(" oxdiagk/linux/x86_64/"),
            std::string::npos);
  image.unload();
}

TEST_F(ModuleRecord, KeepsTheStateOfTheLegacyWrapper) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  tModulePackage& package = *image.setLegacyWrapperLoadState(7);
  EXPECT_EQ(package.legacyWrapperState, 7u);
  package.legacyWrapperWords[0] = 11;
  package.legacyWrapperWords[1] = 12;
  EXPECT_EQ(image.setLegacyWrapperLoadState(0xFFFFFFFF), &package);
  EXPECT_EQ(package.legacyWrapperState, 0xFFFFFFFF);
  EXPECT_EQ(package.legacyWrapperWords[0], 11u);
  EXPECT_EQ(package.legacyWrapperWords[1], 12u);
  EXPECT_EQ(image.setLegacyWrapperLoadState(0), &package);
  EXPECT_EQ(package.legacyWrapperState, 0u);
  EXPECT_EQ(package.legacyWrapperWords[0], 0u);
  EXPECT_EQ(package.legacyWrapperWords[1], 0u);
  image.unload();
}

TEST_F(ModuleRecord, KeepsTheStateOfTheWDMWrapperAndGivesTheIdentifier) {
  ASSERT_EQ(image.initialise(), STATUS_SUCCESS);
  tModulePackage const& package = *image.setLegacyWrapperLoadState(0);
  for (u32 const state : {1u, 0u, 0xFFFFFFFFu, 2u, 0u}) {
    EXPECT_EQ(image.setWDMWrapperLoadState(state), &package.identity->guid);
    EXPECT_EQ(package.wdmWrapperState, state);
  }
  EXPECT_EQ(package.legacyWrapperState, 0u);
  image.unload();
}
