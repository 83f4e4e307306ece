// The class registry against a map of the C++ library, with many classes, and around its start.

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ntos/irql.h"
#include "ntoshost/executive.h"
#include "qelmk/qelmk.h"
#include "runningFramework.h"
#include "vexk/statusCodes.h"

namespace {

using nQELM100::kStatusClassNameTaken;
using nQELM100::kStatusClassUnknown;
using nQELM100::tClass;
using nQELM100::tClassImplementation;

// Many names, and two records of each.
class tRecords {
 public:
  explicit tRecords(u32 count) {
    for (u32 index = 0; index < count; ++index) {
      names.push_back("nMANY" + std::to_string(index % 7) + "::tClass" + std::to_string(index));
    }
    for (std::string const& name : names) {
      for (int copy = 0; copy < 2; ++copy) {
        records.push_back(std::make_unique<tClassImplementation>(name.c_str(), nullptr, nullptr));
      }
    }
  }

  tClassImplementation& at(size_t index) { return *records[index]; }
  char const* nameAt(size_t index) { return names[index / 2].c_str(); }
  size_t size() const { return records.size(); }

 private:
  std::vector<std::string> names;
  std::vector<std::unique_ptr<tClassImplementation>> records;
};

i32 add(tClassImplementation& record) {
  i32 status = 0;
  nQELM100::registerClass(record, status);
  return status;
}

tClass find(char const* name) {
  i32 status = 0;
  tClass const found = tClass::forName(name, status);
  EXPECT_EQ(found.isValid() ? 0 : kStatusClassUnknown, status);
  return found;
}

// One turn of the hash that the registry arranges its classes by. A name counts by its length, then
// its words.
u64 mix(u64 hash, u64 word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15;
  return hash ^ hash >> 32;
}

// The text of these words, or "" when one of them has a byte 0.
std::string textOf(std::initializer_list<u64> words) {
  std::string text;
  for (u64 const word : words) text.append(reinterpret_cast<char const*>(&word), sizeof(word));
  return text.find('\0') == std::string::npos ? text : "";
}

// Two names that the registry cannot tell apart by their hashes: of one length, or of which the
// first begins the second.
struct tTwins {
  static constexpr u64 kFirst = 0x5F73656D616E5F61;
  static constexpr u64 kSecond = 0x7962735F666F5F65;
  u64 const begun = mix(16, kFirst) ^ kSecond;

  std::string one = textOf({kFirst, kSecond});
  std::string ofOneLength = textOf({kFirst + 1, begun ^ mix(16, kFirst + 1)});
  std::string longer = textOf({kFirst, kSecond, begun ^ mix(mix(24, kFirst), kSecond)});
};

// What is registered by name: the record, and how often.
using tModel = std::map<std::string, std::pair<tClassImplementation*, u32>>;

void demandLikeModel(tRecords& records, tModel const& model) {
  for (size_t index = 0; index < records.size(); index += 2) {
    auto const entry = model.find(records.nameAt(index));
    tClass const wanted = entry == model.end() ? tClass() : tClass(*entry->second.first);
    ASSERT_TRUE(find(records.nameAt(index)) == wanted) << records.nameAt(index);
  }
}

void addToBoth(tModel& model, char const* name, tClassImplementation& record) {
  auto const [entry, isNew] = model.try_emplace(name, &record, 0u);
  bool const isTaken = entry->second.first != &record;
  EXPECT_EQ(isTaken ? kStatusClassNameTaken : 0, add(record));
  if (!isTaken) ++entry->second.second;
}

void removeFromBoth(tModel& model, char const* name, tClassImplementation& record) {
  nQELM100::unregisterClass(record);
  auto const entry = model.find(name);
  if (entry == model.end() || entry->second.first != &record) return;
  if (--entry->second.second == 0) model.erase(entry);
}

}  // namespace

TEST(QelmkRegistryModel, ManyRandomRegistrationsAreLikeTheModels) {
  tRunningFramework const framework;
  tRecords records(300);
  tModel model;
  std::mt19937 random(4);
  for (u32 round = 0; round < 20000; ++round) {
    size_t const index = random() % records.size();
    if (random() % 2 == 0) {
      addToBoth(model, records.nameAt(index), records.at(index));
    } else {
      removeFromBoth(model, records.nameAt(index), records.at(index));
    }
    if (round % 500 == 0) demandLikeModel(records, model);
  }
  for (auto const& [name, entry] : model) {
    for (u32 count = 0; count < entry.second; ++count) nQELM100::unregisterClass(*entry.first);
  }
  demandLikeModel(records, tModel());
}

TEST(QelmkRegistryModel, ManyClassesAreFoundWhateverTheOrderOfLeaving) {
  tRunningFramework const framework;
  tRecords records(2000);
  for (size_t index = 0; index < records.size(); index += 2) EXPECT_EQ(0, add(records.at(index)));
  for (size_t index = 0; index < records.size(); index += 4) {
    nQELM100::unregisterClass(records.at(index));
  }
  for (size_t index = 0; index < records.size(); index += 2) {
    EXPECT_EQ(index % 4 != 0, find(records.nameAt(index)).isValid());
  }
  for (size_t index = 2; index < records.size(); index += 4) {
    nQELM100::unregisterClass(records.at(index));
  }
  EXPECT_TRUE(find("nQELM100::iCloneable").isValid());
}

TEST(QelmkRegistryModel, NamesOfOneHashAreToldApart) {
  tRunningFramework const framework;
  tTwins const twins;
  for (std::string const& otherName : {twins.ofOneLength, twins.longer}) {
    ASSERT_NE("", otherName);
    tClassImplementation one(twins.one.c_str(), nullptr, nullptr);
    tClassImplementation other(otherName.c_str(), nullptr, nullptr);
    EXPECT_EQ(0, add(other));
    EXPECT_FALSE(find(twins.one.c_str()).isValid());
    EXPECT_EQ(0, add(one));
    EXPECT_TRUE(find(twins.one.c_str()) == tClass(one));
    EXPECT_TRUE(find(otherName.c_str()) == tClass(other));
    nQELM100::unregisterClass(other);
    EXPECT_TRUE(find(twins.one.c_str()) == tClass(one));
    EXPECT_FALSE(find(otherName.c_str()).isValid());
    nQELM100::unregisterClass(one);
  }
}

TEST(QelmkRegistryModel, TakesNoMemory) {
  tRunningFramework const framework;
  tRecords records(100);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  for (size_t index = 0; index < records.size(); index += 2) EXPECT_EQ(0, add(records.at(index)));
  EXPECT_TRUE(find(records.nameAt(50)).isValid());
  for (size_t index = 0; index < records.size(); index += 2) {
    nQELM100::unregisterClass(records.at(index));
  }
  ntoshost::clearFaults();
}

TEST(QelmkRegistryModel, IsUsedUpToApcLevel) {
  tRunningFramework const framework;
  tRecords records(1);
  KIRQL before = PASSIVE_LEVEL;
  KeRaiseIrql(APC_LEVEL, &before);
  EXPECT_EQ(0, add(records.at(0)));
  EXPECT_TRUE(find(records.nameAt(0)).isValid());
  nQELM100::unregisterClass(records.at(0));
  KeLowerIrql(before);
}

TEST(QelmkRegistryModel, NothingIsRegisteredOrFoundBeforeTheFrameworkRuns) {
  tRecords records(1);
  EXPECT_EQ(kStatusNotInitialized, add(records.at(0)));
  nQELM100::unregisterClass(records.at(0));
  EXPECT_FALSE(find(records.nameAt(0)).isValid());
  EXPECT_FALSE(find("nQELM100::iCloneable").isValid());
}

TEST(QelmkRegistryModel, TheFrameworksOwnClassesGoWhenItStops) {
  { tRunningFramework const framework; }
  EXPECT_FALSE(find("nQELM100::iCloneable").isValid());
  tRunningFramework const again;
  EXPECT_TRUE(find("nQELM100::iCloneable").isValid());
}

TEST(QelmkRegistryModel, AClassCanLeaveAfterTheFrameworkStopped) {
  tRecords records(1);
  {
    tRunningFramework const framework;
    EXPECT_EQ(0, add(records.at(0)));
  }
  nQELM100::unregisterClass(records.at(0));
  tRunningFramework const again;
  EXPECT_FALSE(find(records.nameAt(0)).isValid());
}
