// Categories that are looked up while they are made, in every order.

#include <gtest/gtest.h>

#include <string>

#include "schedules/tExplorer.h"
#include "support/assertSwitches.h"
#include "trace/startedModules.h"

// Behind everything of the standard library, and before what is inline here.
#include "schedules/scheduledAtomics.h"

#include "oxdiagk/tCategoryTable.h"

using nOXDIAG100::tCategoryTable;

namespace {

struct tValue {
  int number;
};

// Found is found for ever, and whole; the maker goes through names that follow each other's links.
class tMakerAndFinders {
 public:
  static constexpr unsigned kThreads = 3;

  void run(unsigned thread) {
    if (thread == 0) {
      for (unsigned index = 0; index < kNames; ++index) {
        EXPECT_NE(table.addCopy(names[index], {static_cast<int>(index) + 1}), nullptr);
      }
      return;
    }
    bool wasThere[kNames] = {};
    for (int round = 0; round < 2; ++round) lookAtAll(wasThere);
  }

  void finish() {
    bool wasThere[kNames] = {true, true, true};
    lookAtAll(wasThere);
    table.removeCopies();
  }

 private:
  static constexpr unsigned kNames = 3;

  void lookAtAll(bool (&wasThere)[kNames]) {
    for (unsigned index = 0; index < kNames; ++index) {
      auto const* const found = table.find(names[index]);
      EXPECT_TRUE(found != nullptr || !wasThere[index]) << names[index] << " was lost";
      if (found == nullptr) continue;
      wasThere[index] = true;
      EXPECT_STREQ(found->getName(), names[index]);
      EXPECT_EQ(found->value.number, static_cast<int>(index) + 1);
    }
  }

  static constexpr char const* names[kNames] = {"rack", "slot", "gauge"};
  static constexpr u64 kSecret = 1;

  tCategoryTable<tValue> table{kSecret};
};

// Two threads that make the same category. The hash of its name is another one each time, and so
// are the points.
class tTwoMakers {
 public:
  static constexpr unsigned kThreads = 2;

  void run(unsigned /*thread*/) {
    contracts.configure("--category rack --break off");
    EXPECT_TRUE(contracts.checksAreEnabled("rack"));
    EXPECT_FALSE(contracts.breakOnViolationIsEnabled("rack"));
  }
  void finish() {
    EXPECT_TRUE(contracts.checksAreEnabled("rack"));
    EXPECT_FALSE(contracts.breakOnViolationIsEnabled("rack"));
    EXPECT_TRUE(contracts.breakOnViolationIsEnabled("default"));
    char text[2000];
    contracts.inquire(text, sizeof(text), nullptr);
    std::string const settings = text;
    EXPECT_EQ(settings.find("rack"), settings.rfind("rack")) << "made twice";
  }

 private:
  tPrivateContracts contracts;
};

}  // namespace

TEST(CategorySchedules, ACategoryIsFoundWholeAndStays) {
  explore<tMakerAndFinders>("categoriesFound", {2, 500});
}

TEST(CategorySchedules, TwoThreadsMakeOneCategory) {
  explore<tTwoMakers>("categoriesTwice", {tReach::kRandomOnly, 2000});
}
