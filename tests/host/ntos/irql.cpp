// One interrupt request level a thread.

#include "ntos/irql.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST(Irql, AThreadStartsAtPassiveLevel) {
  EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
  KIRQL seen = HIGH_LEVEL;
  std::thread([&] { seen = KeGetCurrentIrql(); }).join();
  EXPECT_EQ(seen, PASSIVE_LEVEL);
}

TEST(Irql, RaisingTellsTheLevelBeforeAndLoweringGoesBack) {
  KIRQL first = HIGH_LEVEL;
  KIRQL second = HIGH_LEVEL;
  KeRaiseIrql(APC_LEVEL, &first);
  EXPECT_EQ(first, PASSIVE_LEVEL);
  KeRaiseIrql(DISPATCH_LEVEL, &second);
  EXPECT_EQ(second, APC_LEVEL);
  EXPECT_EQ(KeGetCurrentIrql(), DISPATCH_LEVEL);
  KeLowerIrql(second);
  EXPECT_EQ(KeGetCurrentIrql(), APC_LEVEL);
  KeLowerIrql(first);
  EXPECT_EQ(KeGetCurrentIrql(), PASSIVE_LEVEL);
}

TEST(Irql, TheLevelOfOneThreadIsNotThatOfAnother) {
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  KIRQL seen = HIGH_LEVEL;
  std::thread([&] { seen = KeGetCurrentIrql(); }).join();
  EXPECT_EQ(seen, PASSIVE_LEVEL);
  EXPECT_EQ(KeGetCurrentIrql(), DISPATCH_LEVEL);
  KeLowerIrql(previous);
}

TEST(Irql, StayingAtTheLevelIsAllowed) {
  KIRQL previous;
  KeRaiseIrql(PASSIVE_LEVEL, &previous);
  KeLowerIrql(PASSIVE_LEVEL);
  EXPECT_EQ(previous, PASSIVE_LEVEL);
}

TEST(IrqlDeathTest, RaisingToALowerLevelIsRefused) {
  KIRQL previous;
  KeRaiseIrql(DISPATCH_LEVEL, &previous);
  KIRQL ignored;
  EXPECT_DEATH(KeRaiseIrql(APC_LEVEL, &ignored),
               "ntos: KeRaiseIrql would lower the IRQL from 2 to 1\\.\n$");
  KeLowerIrql(previous);
}

TEST(IrqlDeathTest, LoweringToAHigherLevelIsRefused) {
  EXPECT_DEATH(KeLowerIrql(APC_LEVEL), "ntos: KeLowerIrql would raise the IRQL from 0 to 1\\.\n$");
}

TEST(IrqlDeathTest, ThereIsNoLevelAboveTheHighest) {
  KIRQL previous;
  KeRaiseIrql(HIGH_LEVEL, &previous);
  KeLowerIrql(previous);
  EXPECT_DEATH(KeRaiseIrql(16, &previous),
               "KeRaiseIrql was asked for IRQL 16; the highest is 15\\.");
}

}  // namespace
