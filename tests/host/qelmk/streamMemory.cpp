// How much memory a stream can make its reader take, whatever it claims: below 8 times the bytes
// that were read, and 64 KiB. Watched in front of every item and behind it, with a reader that
// cannot tell how much is left, and over the whole stream with the binary reader.

#include <gtest/gtest.h>

#include <string>

#include "ntoshost/executive.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/qelmk.h"
#include "qelmk/tWatchingReader.h"
#include "trace/startedModules.h"

namespace {

using nQELM100::kMostObjectDepth;
using nQELM100::tBinaryObjectReader;
using nQELM100::tObject;

char const kDescription[] = "nOXDIAG100::tStatus2Description";
char const kImplementation[] = "nOXDIAG100::tStatus2DescriptionImplementation";
char const kTexts[] = "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>";
char const kTitle[] = "nOXDIAG100::tTitleReportable";
char const kItem[] = "nOXDIAG100::tReportItem";

// The classes with a list of their own, and the bytes in front of its count.
struct tListClass {
  char const* name;
  u32 lead;
};
constexpr tListClass kListClasses[] = {
    {"nOXDIAG100::tIntrinsicTypeReportable<i32>", 0},
    {"nOXDIAG100::tIntrinsicTypeReportable<u32>", 0},
    {"nOXDIAG100::tIntrinsicTypeReportable<i64>", 0},
    {"nOXDIAG100::tIntrinsicTypeReportable<u64>", 0},
    {kTexts, 0},
    {"nOXDIAG100::tPropertyIDReportable", 0},
    {"nOXDIAG100::tEnumPropertyReportable", 4},
    {"nOXDIAG100::tGUIDReportable", 0},
    {"nOXDIAG100::tSSTimeAbsoluteReportable", 0},
    {"nOXDIAG100::tStringProxyReportable", 4},
    {kDescription, 0},
    {kImplementation, 0},
};

template <class tNumber>
std::string asBytes(tNumber number) {
  return std::string(reinterpret_cast<char const*>(&number), sizeof(number));
}

std::string repeated(std::string const& piece, u32 count) {
  std::string bytes;
  bytes.reserve(piece.size() * count);
  for (; count != 0; --count) bytes += piece;
  return bytes;
}

std::string object(std::string const& name, std::string const& content) {
  return asBytes(static_cast<u16>(name.size())) + name + asBytes(static_cast<u32>(content.size())) +
         content;
}

std::string stream(std::string const& items) {
  return "QELM" + asBytes(u32{1}) + items;
}

std::string counted(u32 count, std::string const& content) {
  return asBytes(count) + content;
}

std::string text(std::string const& units) {
  return asBytes(static_cast<u32>(units.size() / 2)) + units;
}

std::string const kEmptyItem = asBytes(i32{1}) + asBytes(u32{0});
std::string const kItemHead = asBytes(i32{1}) + asBytes(u32{1});

void destroy(tObject* made) {
  nQELM100::destroyThroughClass(made);
}

void expectBoundedBlindly(std::string const& bytes, std::string const& what) {
  i32 status = 0;
  tWatchingReader reader(bytes.data(), bytes.size(), status);
  while (status >= 0 && reader.getPosition() < bytes.size()) destroy(reader.readObject(status));
  EXPECT_EQ(reader.getFinding(), "") << what;
}

// What was read up to a failure is at most what is in front of its place.
void expectBoundedBinary(std::string const& bytes, std::string const& what) {
  tWatchedPool pool;
  i32 status = 0;
  tBinaryObjectReader reader(bytes.data(), bytes.size(), status);
  while (status >= 0 && !reader.isAtEnd()) destroy(reader.readObject(status));
  u64 const read = status < 0 ? reader.getFailurePosition() : reader.getPosition();
  u64 const taken = pool.takePeak();
  EXPECT_TRUE(isBounded(taken, read)) << taken << " bytes for " << read << ", " << what;
}

void expectBounded(std::string const& bytes, std::string const& what = "") {
  u64 const blocks = ntoshost::outstandingBlocks();
  expectBoundedBlindly(bytes, what);
  expectBoundedBinary(bytes, what);
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks) << what;
}

// Descriptions in one another, `depth` of them, each with `whole` items in front of the one that
// holds the next; each claims `claimed` items, or as many as its content can hold.
std::string nested(u32 depth, u32 whole, u32 claimed) {
  std::string inner;
  for (u32 level = 0; level < depth; ++level) {
    std::string const items = repeated(kEmptyItem, whole) + (inner.empty() ? "" : kItemHead);
    u32 const held = static_cast<u32>(items.size() + inner.size()) / 2;
    inner = object(kDescription, counted(claimed != 0 ? claimed : held, items + inner));
  }
  return stream(inner);
}

}  // namespace

TEST(StreamMemory, NestedDescriptionsClaimNoMoreThanTheyAre) {
  for (u32 depth = 1; depth <= kMostObjectDepth + 1; ++depth) {
    for (u32 whole : {0u, 1u, 3u, 1000u}) {
      for (u32 claimed : {0u, 1u, 5u, 100000u, 0x10000000u, 0xFFFFFFFFu}) {
        expectBounded(
            nested(depth, whole, claimed),
            std::to_string(depth) + " " + std::to_string(whole) + " " + std::to_string(claimed));
      }
    }
  }
}

TEST(StreamMemory, ALongTailBelowNestedDescriptionsIsNotClaimedSixteenTimes) {
  std::string inner = std::string(3 << 20, '\1');
  for (u32 level = 0; level < kMostObjectDepth; ++level) {
    u32 const held = static_cast<u32>(inner.size()) / 2;
    inner = object(kDescription, counted(held, kItemHead + inner));
  }
  expectBounded(stream(inner));
}

TEST(StreamMemory, ListsOfEmptyItemsStayBelowTheBoundAtEveryLength) {
  for (u32 count = 0; count < 20000; count += 1 + count / 4) {
    std::string const items = repeated(kEmptyItem, count);
    expectBounded(stream(object(kDescription, counted(count, items))), std::to_string(count));
    expectBounded(stream(object(kDescription, counted(count + 1, items))), std::to_string(count));
  }
}

TEST(StreamMemory, ListsOfTheSmallestObjectsStayBelowTheBound) {
  for (char const* name : {kTitle, "nOXDIAG100::tWhiteSpaceReportable"}) {
    std::string const item = kItemHead + object(name, "");
    expectBounded(stream(object(kDescription, counted(5000, repeated(item, 5000)))), name);
  }
  for (tListClass const& one : kListClasses) {
    std::string const value = object(one.name, std::string(one.lead, '\0') + counted(0, ""));
    std::string const item = kItemHead + value;
    expectBounded(stream(object(kDescription, counted(1000, repeated(item, 1000)))), one.name);
    expectBounded(stream(repeated(object(kItem, item), 100)), one.name);
  }
}

TEST(StreamMemory, EachClassWithAnyCountStaysBelowTheBound) {
  for (tListClass const& one : kListClasses) {
    for (u32 size : {0u, 4u, 1000u, 30000u}) {
      std::string const content(size, '\0');
      for (u32 count : {1u, size / 2, size / 4, size / 8, size / 16, size, size + 1, 0x7FFFFFFFu,
                        0xFFFFFFFFu}) {
        std::string const bytes = std::string(one.lead, '\0') + counted(count, content);
        expectBounded(stream(object(one.name, bytes)), one.name + (" " + std::to_string(count)));
      }
    }
  }
}

TEST(StreamMemory, TextsOfAnyLengthStayBelowTheBound) {
  for (u32 length : {0u, 1u, 2u, 3u, 7u, 15u, 16u, 17u, 100u, 5000u}) {
    u32 const count = length < 100 ? 10000 : 200;
    std::string const texts = repeated(text(std::string(2 * length, 'w')), count);
    expectBounded(stream(object(kTexts, counted(count, texts))), std::to_string(length));
  }
}

TEST(StreamMemory, OneLongTextAmongShortOnesStaysBelowTheBound) {
  std::string texts;
  for (u32 round = 0; round < 18; ++round) {
    texts += repeated(text(""), 100) + text(std::string(size_t{2} << round, 'w'));
  }
  expectBounded(stream(object(kTexts, counted(18 * 101, texts))));
}

TEST(StreamMemory, TextsBelowNestedDescriptionsStayBelowTheBound) {
  std::string inner = object(kTexts, counted(50000, repeated(text(""), 50000)));
  for (u32 level = 1; level < kMostObjectDepth; ++level) {
    std::string const items = repeated(kEmptyItem, 1025) + kItemHead + inner;
    inner = object(kDescription, counted(0x01000000, items));
  }
  expectBounded(stream(inner));
}

TEST(StreamMemory, TextsCutAtAnyByteStayBelowTheBound) {
  std::string const whole =
      stream(object(kTexts, counted(4000, repeated(text(std::string("a\0b\0", 4)), 4000))));
  for (size_t size = whole.size(); size > 8; size -= 1 + size / 20) {
    expectBounded(whole.substr(0, size), std::to_string(size));
  }
}

TEST(StreamMemory, AStatusTakesNoMoreThanItsDescription) {
  std::string const detail = asBytes(u32{181}) + std::string(24 + 101 + 4 + 40 + 4, '\0') +
                             asBytes(u32{1}) + asBytes(u32{1});
  for (u32 claimed : {0u, 0x10000000u, 0xFFFFFFFFu}) {
    std::string const description = nested(kMostObjectDepth, 500, claimed).substr(8);
    std::string const bytes = stream(asBytes(u32{8}) + asBytes(i32{-1}) + asBytes(u32{1}) + detail +
                                     description + std::string(40, '\0'));
    i32 status = 0;
    tWatchingReader reader(bytes.data(), bytes.size(), status);
    nOXDIAG100::tStatus2 read;
    read.readExternal(reader, status);
    EXPECT_EQ(reader.getFinding(), "");
    EXPECT_LT(status, 0);
  }
}
