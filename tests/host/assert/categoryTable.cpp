// The table of categories beside the standard library's map, with names of every kind and with
// exhausted memory.

#include "oxdiagk/tCategoryTable.h"

#include <map>
#include <random>
#include <set>
#include <string>

#include "trace/startedModules.h"

namespace {

using tNumbers = nOXDIAG100::tCategoryTable<u32>;
using tModel = std::map<std::string, u32>;  // its order is that of unsigned bytes

constexpr u64 kSecrets[] = {0, 1, 0x123456789ABCDEF0, ~u64{0}};

void add(tNumbers& table, tModel& model, std::string const& name) {
  u32 const value = static_cast<u32>(model.size());
  if (!model.emplace(name, value).second) return;
  ASSERT_NE(table.addCopy(name.c_str(), value), nullptr) << name;
}

// The same names with the same values, found and in order.
void expectSame(tNumbers const& table, tModel const& model) {
  tNumbers::tEntry* entry = table.first();
  for (auto const& [name, value] : model) {
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->getName(), name);
    EXPECT_EQ(entry->value, value);
    EXPECT_EQ(table.find(name.c_str()), entry);
    entry = tNumbers::next(*entry);
  }
  EXPECT_EQ(entry, nullptr);
}

void expectModelled(std::set<std::string> const& names) {
  for (u64 secret : kSecrets) {
    tNumbers table(secret);
    tModel model;
    for (std::string const& name : names) add(table, model, name);
    expectSame(table, model);
    EXPECT_FALSE(table.hasFailed());
  }
}

std::string randomName(std::mt19937& random, char const* letters, u32 most) {
  std::string name(random() % (most + 1), 0);
  for (char& letter : name) letter = letters[random() % std::char_traits<char>::length(letters)];
  return name;
}

}  // namespace

TEST(CategoryTable, AnEmptyOneFindsNothing) {
  tNumbers const table(1);
  EXPECT_EQ(table.find(""), nullptr);
  EXPECT_EQ(table.find("default"), nullptr);
  EXPECT_EQ(table.first(), nullptr);
}

TEST(CategoryTable, ZerosAreAnEmptyOne) {
  alignas(tNumbers) static u8 zeros[sizeof(tNumbers)] = {};
  auto const& table = *reinterpret_cast<tNumbers const*>(zeros);
  EXPECT_EQ(table.find(""), nullptr);
  EXPECT_EQ(table.find("default"), nullptr);
  EXPECT_EQ(table.first(), nullptr);
  EXPECT_FALSE(table.hasFailed());
}

TEST(CategoryTable, NamesOfEveryLengthAreToldApartByEachOfTheirBytes) {
  std::set<std::string> names;
  for (size_t length = 0; length < 40; ++length) {
    std::string const name(length, 'x');
    names.insert(name);
    for (size_t place = 0; place < length; ++place) {
      for (char other : {'\x01', 'y', '\x7F', '\x80', '\xFF'}) {
        names.insert(name.substr(0, place) + other + name.substr(place + 1));
      }
    }
  }
  expectModelled(names);
}

TEST(CategoryTable, ANameIsFoundWhateverLiesAroundIt) {
  for (size_t length = 0; length < 40; ++length) {
    std::string const name(length, 'x');
    tNumbers table(1);
    ASSERT_NE(table.addCopy(name.c_str(), 7), nullptr);
    for (char const other : {'\x01', 'x', '\xFF'}) {
      std::string around(length + 20, other);
      around.replace(10, length + 1, name.c_str(), length + 1);
      auto const* const found = table.find(around.data() + 10);
      ASSERT_NE(found, nullptr) << length;
      EXPECT_EQ(found->value, 7u);
    }
  }
}

TEST(CategoryTable, BytesAreOrderedWithoutSign) {
  std::set<std::string> names = {""};
  for (u32 byte = 1; byte <= 0xFF; ++byte) {
    names.insert(std::string(1, static_cast<char>(byte)));
    names.insert("a" + std::string(1, static_cast<char>(byte)));
  }
  expectModelled(names);
}

TEST(CategoryTable, NamesThatBeginWithEachOtherAreApart) {
  std::set<std::string> names;
  for (size_t length = 0; length < 300; ++length) names.insert(std::string(length, 'n'));
  expectModelled(names);
}

TEST(CategoryTable, AnyNamesInAnyOrderAreThoseOfTheMap) {
  std::mt19937 random(20261122);
  for (u64 secret : kSecrets) {
    for (char const* letters : {"ab", "\x01\x7F\x80\xFF", "abcdefghijklmnopqrstuvwxyz0123456789"}) {
      tNumbers table(secret);
      tModel model;
      for (u32 count = 0; count < 2000; ++count) add(table, model, randomName(random, letters, 20));
      expectSame(table, model);
      for (u32 count = 0; count < 2000; ++count) {
        std::string const name = randomName(random, letters, 20);
        EXPECT_EQ(table.find(name.c_str()) != nullptr, model.contains(name));
      }
    }
  }
}

TEST(CategoryTable, FiftyThousandNamesInRisingAndInFallingOrderAreFound) {
  for (bool isRising : {true, false}) {
    tNumbers table(7);
    tModel model;
    for (u32 count = 0; count < 50'000; ++count) {
      add(table, model, "slot" + std::to_string(isRising ? 100'000 + count : 200'000 - count));
    }
    expectSame(table, model);
  }
}

TEST(CategoryTable, AnEntryStaysWhereItIs) {
  tNumbers table(7);
  tModel model;
  add(table, model, "first");
  tNumbers::tEntry* const first = table.find("first");
  for (u32 count = 0; count < 5000; ++count) add(table, model, std::to_string(count * 7919));
  EXPECT_EQ(table.find("first"), first);
  EXPECT_EQ(first->value, 0u);
}

TEST(CategoryTable, RemovingTheCopiesLeavesTheOthers) {
  u64 const before = ntoshost::outstandingBlocks();
  tNumbers table(7);
  tModel kept;
  tModel all;
  for (char const* name : {"m", "", "z"}) {
    kept.emplace(name, static_cast<u32>(kept.size()));
    ASSERT_NE(table.add(name, static_cast<u32>(all.size())), nullptr);
    all = kept;
  }
  for (u32 round = 0; round < 3; ++round) {
    for (u32 count = 0; count < 1000; ++count) add(table, all, std::to_string(count));
    expectSame(table, all);
    table.removeCopies();
    all = kept;
    expectSame(table, kept);
    EXPECT_EQ(ntoshost::outstandingBlocks(), before + kept.size());
  }
}

TEST(CategoryTable, AFailedAdditionIsRememberedAndLeavesEverythingAsItWas) {
  for (u64 call : {u64{1}, u64{2}}) {  // the copy of the name, the entry
    tNumbers table(7);
    tModel model;
    for (u32 count = 0; count < 100; ++count) add(table, model, std::to_string(count));
    u64 const before = ntoshost::outstandingBlocks();
    EXPECT_FALSE(table.hasFailed());
    ntoshost::failNth(ntoshost::kFaultMemory, call);
    EXPECT_EQ(table.addCopy("new", 1), nullptr);
    ntoshost::clearFaults();
    EXPECT_EQ(ntoshost::faultsInjected(), 1u);
    EXPECT_TRUE(table.hasFailed());
    EXPECT_EQ(ntoshost::outstandingBlocks(), before);
    expectSame(table, model);
    add(table, model, "new");
    expectSame(table, model);
    EXPECT_TRUE(table.hasFailed());
  }
}

TEST(CategoryTable, AFailedAdditionWithoutACopyIsRememberedToo) {
  tNumbers table(7);
  ntoshost::failNth(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(table.add("new", 1), nullptr);
  ntoshost::clearFaults();
  EXPECT_TRUE(table.hasFailed());
  EXPECT_EQ(table.find("new"), nullptr);
  EXPECT_EQ(table.first(), nullptr);
}

TEST(CategoryTable, AnAdditionIsTwoAllocationsAndALookUpNone) {
  tNumbers table(7);
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  table.addCopy("one", 1);
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 2u);
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  table.find("one");
  table.find("two");
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}
