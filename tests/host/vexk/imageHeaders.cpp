// Headers of PE images in memory: good ones, and such that lie.

#include "windows/tImageHeaders.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "common/moduleName.h"

namespace {

constexpr u32 kPage = 0x1000;
constexpr u32 kSize = 4 * kPage;

// The pages that are in memory, for the image that is looked at.
struct tPages {
  u8 const* base = nullptr;
  u64 size = 0;
  u32 missing = ~0U;  // a page
};
tPages pages;

bool isPresent(void const* address) {
  auto const place = reinterpret_cast<u64>(address) - reinterpret_cast<u64>(pages.base);
  return place < pages.size && place / kPage != pages.missing;
}

// The same, and besides what is asked for behind the first look, which is at the headers.
u32 looks = 0;

bool isPresentOnce(void const* address) {
  return ++looks == 2 || isPresent(address);
}

constexpr u32 kSignature = 0x80;
constexpr u32 kOptional = kSignature + 24;
constexpr u32 kDirectories = kOptional + 112;
constexpr u32 kSections = kOptional + 240;
constexpr u32 kData = kPage;  // the section with the data
constexpr u32 kDebug = kData + 0x100;
constexpr u32 kRecord = kData + 0x200;
constexpr u32 kExports = kData + 0x300;
constexpr u32 kExportName = kData + 0x400;
constexpr u32 kReadOnly = 0x40000040;

// An image with one section, a PDB record, and no exports.
class tImage {
 public:
  tImage() : bytes(kSize, 0) {
    put<u16>(0, 0x5A4D);
    put<u32>(0x3C, kSignature);
    put<u32>(kSignature, 0x4550);
    put<u16>(kSignature + 6, 1);
    put<u16>(kSignature + 20, 240);
    put<u16>(kOptional, 0x20B);
    put<u32>(kOptional + 56, kSize);
    put<u32>(kOptional + 108, 16);
    putSection(kReadOnly);
    put<u32>(kDirectories + 6 * 8, kDebug);
    put<u32>(kDirectories + 6 * 8 + 4, 28);
    put<u32>(kDebug + 12, 2);
    putRecord(kRecord, "C:\\build\\slotbus.pdb");
  }

  template <class T>
  void put(u32 place, T value) {
    std::memcpy(&bytes[place], &value, sizeof value);
  }

  void putText(u32 place, std::string const& text) {
    std::memcpy(&bytes[place], text.c_str(), text.size() + 1);
  }

  void putSection(u32 flags) {
    put<u32>(kSections + 8, kSize - kData);
    put<u32>(kSections + 12, kData);
    put<u32>(kSections + 36, flags);
  }

  void putRecord(u32 place, std::string const& path) {
    put<u32>(kDebug + 16, static_cast<u32>(24 + path.size() + 1));
    put<u32>(kDebug + 20, place);
    putText(place, "RSDS");
    for (u32 i = 0; i != 20; ++i) bytes[place + 4 + i] = static_cast<u8>(i + 1);
    putText(place + 24, path);
  }

  void putExportName(std::string const& name) {
    put<u32>(kDirectories, kExports);
    put<u32>(kDirectories + 4, 40);
    put<u32>(kExports + 12, kExportName);
    putText(kExportName, name);
  }

  // The block ends where the image does, so that the address sanitizer sees every read behind it.
  tLoadedModule read(u32 missingPage = ~0U) const {
    pages = {bytes.data(), bytes.size(), missingPage};
    tImageHeaders const headers(bytes.data(), isPresent);
    tLoadedModule module = {};
    if (headers.areGood()) headers.describe(module);
    return module;
  }

  std::vector<u8> bytes;
};

}  // namespace

TEST(ImageHeaders, TellSizeIdentityAndTheNameOfThePdb) {
  tLoadedModule const module = tImage().read();
  EXPECT_EQ(module.size, kSize);
  EXPECT_STREQ(module.name, "slotbus");
  EXPECT_EQ(module.identityKind, kModulePdbIdentity);
  ASSERT_EQ(module.identitySize, 20);
  for (u32 i = 0; i != 20; ++i) EXPECT_EQ(module.identity[i], i + 1);
}

// The page behind the last one of 4 GiB is not the first one.
TEST(ImageHeaders, AnImageThatClaimsAllPlacesEnds) {
  tImage image;
  image.put<u32>(kOptional + 56, ~0U);
  image.put<u32>(kSections + 8, ~0U - kData);
  image.put<u32>(kDirectories + 6 * 8, ~0U - 100);
  image.put<u32>(kDirectories + 6 * 8 + 4, 28);
  looks = 0;
  pages = {image.bytes.data(), image.bytes.size()};
  tImageHeaders const headers(image.bytes.data(), isPresentOnce);
  tLoadedModule module = {};
  headers.describe(module);
  EXPECT_EQ(module.identitySize, 0);
  EXPECT_EQ(looks, 3U);  // at the headers, the place of the directory and its last byte
}

TEST(ImageHeaders, TheNameOfTheExportsIsTaken) {
  tImage image;
  image.putExportName("oxdiagk.dll");
  EXPECT_STREQ(image.read().name, "oxdiagk.dll");
  image.putExportName("");
  EXPECT_STREQ(image.read().name, "slotbus");
}

TEST(ImageHeaders, LongNamesKeepTheirEnd) {
  std::string const name = std::string(60, 'a') + std::string(40, 'b');
  tImage image;
  image.putRecord(kRecord, name);
  EXPECT_EQ(std::string(image.read().name), name.substr(name.size() - 63));
}

TEST(ImageHeaders, WhatIsNoImageTellsNothing) {
  for (u32 const place : {0U, kSignature, kOptional}) {
    tImage image;
    image.bytes[place] ^= 0xFF;
    tLoadedModule const module = image.read();
    EXPECT_EQ(module.size, 0U) << place;
    EXPECT_STREQ(module.name, "") << place;
  }
}

TEST(ImageHeaders, NothingIsReadOfPagesThatAreNotInMemory) {
  EXPECT_EQ(tImage().read(0).size, 0U);
  tLoadedModule const module = tImage().read(kData / kPage);
  EXPECT_EQ(module.size, kSize);
  EXPECT_EQ(module.identitySize, 0);
  tImage image;
  image.putRecord(kData + kPage - 30, "slotbus.pdb");
  EXPECT_EQ(image.read().identitySize, 20);
  EXPECT_EQ(image.read(kData / kPage + 1).identitySize, 0);
}

TEST(ImageHeaders, NothingIsReadOfSectionsThatAreDiscarded) {
  tImage image;
  image.putSection(kReadOnly | 0x02000000);
  EXPECT_EQ(image.read().identitySize, 0);
  image.putSection(0);
  EXPECT_EQ(image.read().identitySize, 0);
  image.putSection(kReadOnly);
  EXPECT_EQ(image.read().identitySize, 20);
}

TEST(ImageHeaders, PlacesOutsideOfTheImageAreNotRead) {
  for (u32 const place : {0U, 0x40U, kSize - 10, kSize, kSize + 1, 0x7FFFFFFFU, ~0U}) {
    tImage debug;
    debug.put<u32>(kDirectories + 6 * 8, place);
    EXPECT_EQ(debug.read().identitySize, 0) << place;
    tImage record;
    record.put<u32>(kDebug + 20, place);
    EXPECT_EQ(record.read().identitySize, 0) << place;
    tImage exports;
    exports.putExportName("x.dll");
    exports.put<u32>(kExports + 12, place);
    EXPECT_STREQ(exports.read().name, "slotbus") << place;
    exports.put<u32>(kDirectories, place);
    EXPECT_STREQ(exports.read().name, "slotbus") << place;
  }
}

TEST(ImageHeaders, TextsWithoutEndAreCut) {
  tImage image;
  image.putRecord(kRecord, "build");
  image.put<u32>(kDebug + 16, 24 + 3);
  EXPECT_STREQ(image.read().name, "bui");
  for (u32 i = kExportName; i != kSize; ++i) image.bytes[i] = 'x';
  image.put<u32>(kDirectories, kExports);
  image.put<u32>(kDirectories + 4, 40);
  image.put<u32>(kExports + 12, kSize - 5);
  EXPECT_STREQ(image.read().name, "xxxxx");
}

TEST(ImageHeaders, AnythingCanBeThere) {
  std::mt19937 engine(1);
  auto const random = [&engine] { return static_cast<u32>(engine()); };
  tImage const good;
  for (u32 round = 0; round != 20000; ++round) {
    tImage image(good);
    for (u32 changes = random() % 8; changes != 0; --changes) {
      u32 const places[] = {random() % kSize, random() % kPage, kDebug + random() % 28,
                            kSections + random() % 40, kDirectories + random() % 128};
      image.put<u8>(places[random() % 5], static_cast<u8>(random()));
    }
    tLoadedModule const module = image.read();
    EXPECT_LE(std::strlen(module.name), tLoadedModule::kMaxNameLength);
    EXPECT_TRUE(module.identitySize == 0 || module.identitySize == 20);
  }
}

TEST(ModuleName, TakesThePlaceOfTheOneBefore) {
  tLoadedModule module = {};
  setModuleName(module, "/lib/longer.so", 14);
  EXPECT_STREQ(module.name, "longer.so");
  setModuleName(module, "a", 1);
  EXPECT_STREQ(module.name, "a");
}

TEST(ModuleName, OfAPathThatNamesNothingIsTheOneBefore) {
  tLoadedModule module = {};
  setModuleName(module, "longer.so", 9);
  for (char const* path : {"", "/", "/lib/"}) {
    setModuleName(module, path, std::strlen(path));
    EXPECT_STREQ(module.name, "longer.so");
  }
}
