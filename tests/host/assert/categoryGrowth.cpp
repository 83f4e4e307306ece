// What a contract and its configuration cost beside few categories and beside many, in
// instructions.

#include <string>

#include "instructionCount.h"
#include "support/assertSwitches.h"
#include "trace/startedModules.h"

namespace {

constexpr u32 kFew = 4;
constexpr u32 kMany = 1024;
constexpr u32 kVeryMany = 16'384;
// Few, for an instruction that is counted takes microseconds.
constexpr u32 kSamples = 4;  // names that are looked up
constexpr u32 kNewNames = 2;

// Different at the end only.
std::string alikeName(u32 index) {
  return "bus.rack.slot." + std::to_string(1'000'000 + index);
}

// All of them begin with all the shorter ones.
std::string nestedName(u32 index) {
  return std::string(index + 1, 'n');
}

// A few of these, as long as they are on average.
std::string nestedNameOfFew(u32 index) {
  return nestedName(kMany / 2 + index);
}

// A configuration with so many categories more than the built-in ones.
class tManyContracts {
 public:
  using tName = std::string(u32);

  tManyContracts(u32 count, tName* nameOf) : nameOf(nameOf), count(count) {
    for (u32 index = 0; index < count; ++index) add(nameOf(index));
  }

  void add(std::string const& name) { configureWords(contracts, "--category", name.c_str()); }

  // The instructions of a look-up of some of the categories, on average.
  u64 lookUp() {
    u64 sum = 0;
    for (u32 sample = 0; sample < kSamples; ++sample) {
      std::string const name = nameOf(sample * (count - 1) / (kSamples - 1));
      bool isOn = contracts.checksAreEnabled(name.c_str());  // what a first call costs is not meant
      sum += instructionsOf([&] { isOn = contracts.checksAreEnabled(name.c_str()); });
      EXPECT_TRUE(isOn) << name;
    }
    return sum / kSamples;
  }

  // Of what a pop does for each category: it is chosen, and a switch set.
  u64 setSwitch() {
    std::string const name = nameOf(count / 2);
    return instructionsOf(
        [&] { configureWords(contracts, "--category", name.c_str(), "--checks", "off"); });
  }

  // Of one more category, on average.
  u64 insert() {
    u64 sum = 0;
    for (u32 sample = 0; sample < kNewNames; ++sample) {
      std::string const name = nameOf(sample * (count - 1) / (kNewNames - 1)) + "new";
      sum += instructionsOf([&] { add(name); });
      EXPECT_TRUE(contracts.checksAreEnabled(name.c_str())) << name;
    }
    return sum / kNewNames;
  }

  tPrivateContracts contracts;

 private:
  tName* nameOf;
  u32 count;
};

}  // namespace

TEST(CategoryGrowth, ACheckBesideAThousandCategoriesCostsAtMostTwiceThatBesideFour) {
  u64 const few = tManyContracts(kFew, &alikeName).lookUp();
  u64 const many = tManyContracts(kMany, &alikeName).lookUp();
  EXPECT_LE(many, 2 * few);
}

TEST(CategoryGrowth, ACheckBesideManyThousandCategoriesCostsAtMostThreeTimesThatBesideFour) {
  u64 const few = tManyContracts(kFew, &alikeName).lookUp();
  u64 const veryMany = tManyContracts(kVeryMany, &alikeName).lookUp();
  EXPECT_LE(veryMany, 3 * few);
}

TEST(CategoryGrowth, AnUnknownCategoryIsLookedForNoLongerThanAKnownOne) {
  tManyContracts many(kMany, &alikeName);
  u64 const known = many.lookUp();
  u64 sum = 0;
  for (u32 sample = 0; sample < kSamples; ++sample) {
    std::string const name = alikeName(kMany + sample);
    sum += instructionsOf([&] { many.contracts.checksAreEnabled(name.c_str()); });
  }
  EXPECT_LE(sum / kSamples, 2 * known);
}

TEST(CategoryGrowth, TheOptionsOfACategoryCostAtMostTwiceAsMuchBesideAThousand) {
  u64 const few = tManyContracts(kFew, &alikeName).setSwitch();
  u64 const many = tManyContracts(kMany, &alikeName).setSwitch();
  EXPECT_LE(many, 2 * few);
}

TEST(CategoryGrowth, ANewCategoryBesideManyThousandCostsAtMostFourTimesThatBesideFour) {
  u64 const few = tManyContracts(kFew, &alikeName).insert();
  u64 const veryMany = tManyContracts(kVeryMany, &alikeName).insert();
  EXPECT_LE(veryMany, 4 * few);
}

TEST(CategoryGrowth, NamesThatBeginWithEachOtherAreNoDetour) {
  u64 const few = tManyContracts(kFew, &nestedNameOfFew).lookUp();
  u64 const many = tManyContracts(kMany, &nestedName).lookUp();
  EXPECT_LE(many, 2 * few);
}

// The options of one category read its name once, not once each.
TEST(CategoryGrowth, AnOptionOfACategoryWithALongNameCostsAsMuchAsOfOneWithAShortName) {
  constexpr u32 kOptions = 8;
  constexpr size_t kLongName = 500;
  auto const instructionsOfOptions = [](std::string const& name) {
    tPrivateContracts contracts;
    configureWords(contracts, "--category", name.c_str());
    std::string words;
    for (u32 option = 0; option < kOptions; ++option) words += " --break";
    contracts.configure("--checks");  // what a first call costs is not meant
    return instructionsOf([&] { contracts.configure(words.c_str()); });
  };
  EXPECT_LE(instructionsOfOptions(std::string(kLongName, 'n')), 2 * instructionsOfOptions("n"));
}
