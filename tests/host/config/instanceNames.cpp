// The registry finds the objects of the table that it was given, and no others.

#include "config/instanceNames.h"

#include <gtest/gtest.h>

#include "config/tInstanceRegistry.h"
#include "support/tRecordingConfigurable.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

tConfigurable& rack() {
  static tRecordingConfigurable instance;
  return instance;
}

tConfigurable& slot() {
  static tRecordingConfigurable instance;
  return instance;
}

constexpr tNamedInstance kTable[] = {{"rack", &rack}, {"slot", &slot}};

}  // namespace

TEST(InstanceNames, AreThoseOfTheTable) {
  tInstanceRegistry const registry({}, {kTable, 2});
  EXPECT_EQ(registry.findNamed("rack"), &rack());
  EXPECT_EQ(registry.findNamed("slot"), &slot());
  EXPECT_EQ(registry.findNamed("kernel/slot"), &slot());
  EXPECT_EQ(registry.findNamed("trace"), nullptr);
}

TEST(InstanceNames, ANullNameMeansTheFirst) {
  EXPECT_EQ(tInstanceRegistry({}, {kTable, 2}).findNamed(nullptr), &rack());
}

TEST(InstanceNames, WithoutATableThereIsNone) {
  tInstanceRegistry const registry;
  EXPECT_EQ(registry.findNamed(nullptr), nullptr);
  EXPECT_EQ(registry.findNamed("trace"), nullptr);
}
