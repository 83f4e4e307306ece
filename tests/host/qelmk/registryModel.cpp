// The class registry against a map of the C++ library, with many classes, and around its start.

#include <gtest/gtest.h>

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
