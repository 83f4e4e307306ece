// In whose memory buses and children keep things, and in what kind of it.

#include <gtest/gtest.h>

#include "ntos/pnp.h"
#include "ntoshost/devices.h"
#include "support/tChildStack.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kWrapper = ntosPoolTag("vex ");
constexpr u32 kChild = ntosPoolTag("chld");

// The block that begins at an address; size 0 when there is none.
ntoshost::PoolBlock blockAt(void const* address) {
  ntoshost::PoolBlock found = {address, 0, 0, NonPagedPool, 0};
  ntoshost::visitOutstanding(
      [](void* context, ntoshost::PoolBlock const& block) {
        auto& wanted = *static_cast<ntoshost::PoolBlock*>(context);
        if (block.address == wanted.address) wanted = block;
      },
      &found);
  return found;
}

// The answer is the asker's own paged block of this size.
void expectAnswer(tDeviceRequest& request, size_t size) {
  EXPECT_EQ(request.send(), STATUS_SUCCESS);
  ntoshost::PoolBlock const block = blockAt(request.answer<void>());
  EXPECT_EQ(block.size, size);
  EXPECT_EQ(block.tag, kWrapper);
  EXPECT_EQ(block.type, PagedPool);
}

void expectId(DEVICE_OBJECT* child, BUS_QUERY_ID_TYPE type, size_t characters) {
  tDeviceRequest request(child, IRP_MJ_PNP, IRP_MN_QUERY_ID);
  request.location().Parameters.QueryId.IdType = type;
  expectAnswer(request, characters * sizeof(wchar_t));
  request.freeAnswer();
}

void expectText(DEVICE_OBJECT* child, DEVICE_TEXT_TYPE type, size_t characters) {
  tDeviceRequest request(child, IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_TEXT);
  request.location().Parameters.QueryDeviceText.DeviceTextType = type;
  expectAnswer(request, characters * sizeof(wchar_t));
  request.freeAnswer();
}

}  // namespace

TEST(DeviceMemory, AnswersAreTheAskersInPagedMemory) {
  tChildStack const stack;
  expectId(stack.child, BusQueryDeviceID, sizeof("TEST\\Gauge7"));
  expectId(stack.child, BusQueryHardwareIDs, sizeof("TEST\\Gauge7") + sizeof("TEST\\Gauge") + 1);
  expectId(stack.child, BusQueryInstanceID, sizeof("00000001"));
  expectText(stack.child, DeviceTextDescription, sizeof("A gauge"));
  expectText(stack.child, DeviceTextLocationInformation, sizeof("Slot %02d"));
  tDeviceRequest request(stack.child, IRP_MJ_PNP, IRP_MN_QUERY_BUS_INFORMATION);
  expectAnswer(request, sizeof(PNP_BUS_INFORMATION));
  request.freeAnswer();
}

TEST(DeviceMemory, ALongInstanceHasABlockOfItsLength) {
  tChildStack const stack(0x100000000);
  expectId(stack.child, BusQueryInstanceID, sizeof("0000000100000000"));
}

TEST(DeviceMemory, RelationsArePaged) {
  tBusStack stack;
  stack.startBus();
  for (u64 instance = 0; instance < 3; ++instance) {
    tDeviceRequest request(stack.bus(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
    request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
    expectAnswer(request, instance < 2 ? 16 : 24);
    request.freeRelations();
    stack.add(instance, 1);
  }
}

TEST(DeviceMemory, AnAbsentChildIsCountedOnceMore) {
  tBusStack stack;
  stack.startBus();
  for (u32 slot = 1; slot <= 3; ++slot) stack.add(slot, slot);
  EXPECT_EQ(stack.countRelations(), 3u);
  i32 status = 0;
  stack.children->removeChild(1, status);
  for (size_t size : {32u, 24u}) {
    tDeviceRequest request(stack.bus(), IRP_MJ_PNP, IRP_MN_QUERY_DEVICE_RELATIONS);
    request.location().Parameters.QueryDeviceRelations.Type = BusRelations;
    expectAnswer(request, size);
    EXPECT_EQ(request.answer<DEVICE_RELATIONS>()->Count, 2u);
    request.freeRelations();
  }
}

TEST(DeviceMemory, AChildsTextsArePagedAndItsBusIsNot) {
  tChildStack const stack;
  ntoshost::PoolBlock const ids = blockAt(stack.record().texts.getIds());
  EXPECT_EQ(ids.tag, kChild);
  EXPECT_EQ(ids.type, PagedPool);
  EXPECT_EQ(ids.size, stack.record().texts.getIdsLength() * sizeof(wchar_t));
  ntoshost::PoolBlock const parent = blockAt(stack.record().parent);
  EXPECT_EQ(parent.tag, kWrapper);
  EXPECT_EQ(parent.type, NonPagedPoolNx);
}

TEST(DeviceMemory, NothingIsLeftOfABusAndItsChildren) {
  u64 const blocks = ntoshost::outstandingBlocks();
  {
    tChildStack stack;
    EXPECT_EQ(stack.countRelations(), 1u);
    EXPECT_EQ(sendPnp(stack.child, IRP_MN_START_DEVICE), STATUS_SUCCESS);
    stack.add(2, 2);
  }
  EXPECT_EQ(ntoshost::outstandingBlocks(), blocks);
  ntoshost::requireNoDevices("the test");
}
