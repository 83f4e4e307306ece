// How much of a kernel thread's stack the bus takes, as this compiler builds it.

#include <cstdio>

#include "ntoshost/stack.h"
#include "slotbus/rackMachine.h"

using namespace nSLOTBUS100;

class SlotbusStack : public tSlotbusMachine {};

TEST_F(SlotbusStack, ALifeOfTheBusFitsIntoHalfOfIt) {
  if (!ntoshost::hasKernelStacks()) GTEST_SKIP() << "a sanitizer has the stacks";
  ASSERT_EQ(plugIn(), STATUS_SUCCESS);
  tSlotLine line;
  EXPECT_EQ(tellLine(slot(1), line), STATUS_SUCCESS);
  pullOut();
  u64 const depth = ntoshost::deepestKernelStack();
  std::printf("the deepest request had %llu of %llu bytes of stack in use\n", depth,
              ntoshost::kKernelStackSize);
  EXPECT_GT(depth, 0u);
  EXPECT_LE(depth, ntoshost::kKernelStackSize / 2);
}
