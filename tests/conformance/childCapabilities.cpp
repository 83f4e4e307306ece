// What a child can do, and what of that comes from its bus.

#include "conformance/harness.h"
#include "ntos/pnp.h"
#include "support/tChildStack.h"

using namespace nOXDIAG100;

namespace {

constexpr u32 kFixedFlags = 0x210;  // removable, by surprise too

// A query with a record around which nothing may be written.
class tCapabilityQuery {
 public:
  explicit tCapabilityQuery(DEVICE_OBJECT* child)
      : request(child, IRP_MJ_PNP, IRP_MN_QUERY_CAPABILITIES) {
    __builtin_memset(bytes, 0xEE, sizeof(bytes));
    capabilities().Size = sizeof(DEVICE_CAPABILITIES);
    capabilities().Version = 1;
    request.location().Parameters.DeviceCapabilities.Capabilities = &capabilities();
  }

  DEVICE_CAPABILITIES& capabilities() { return *reinterpret_cast<DEVICE_CAPABILITIES*>(bytes + 8); }

  bool isBoundaryWhole() const {
    for (size_t index = 0; index < 8; ++index) {
      if (bytes[index] != 0xEE || bytes[72 + index] != 0xEE) return false;
    }
    return true;
  }

  // Behind the size and the version.
  bool isUntouched() const {
    for (size_t index = 12; index < 72; ++index) {
      if (bytes[index] != 0xEE) return false;
    }
    return isBoundaryWhole();
  }

  alignas(8) u8 bytes[80];
  tDeviceRequest request;
};

// Nothing that a bus says but its states may come through.
DEVICE_CAPABILITIES talkativeCapabilities() {
  DEVICE_CAPABILITIES capabilities;
  __builtin_memset(&capabilities, 0x5A, sizeof(capabilities));
  for (u32 state = 0; state < kPowerSystemMaximum; ++state) {
    capabilities.DeviceState[state] = static_cast<DEVICE_POWER_STATE>(10 + state);
  }
  return capabilities;
}

u32 flagsFrom(u32 before, bool hasUniqueId) {
  tBusStack stack;
  stack.startBus();
  tTestChild child(stack.handler, 1, 1);
  child.description.hasUniqueId = hasUniqueId;
  stack.create(child.description);
  tCapabilityQuery query(stack.driver().newestDevice());
  query.capabilities().Flags = before;
  query.request.send();
  return query.capabilities().Flags;
}

}  // namespace

TEST(ChildCapabilities, TheSlotIsAddressAndNumber) {
  tChildStack const stack(1, 0x12345);
  tCapabilityQuery query(stack.child);
  EXPECT_EQ(query.request.send(), STATUS_SUCCESS);
  EXPECT_EQ(query.request.completions(), 1);
  EXPECT_EQ(query.capabilities().Address, 0x12345u);
  EXPECT_EQ(query.capabilities().UINumber, 0x12345u);
  EXPECT_EQ(query.capabilities().Size, sizeof(DEVICE_CAPABILITIES));
  EXPECT_EQ(query.capabilities().Version, 1);
  EXPECT_TRUE(query.isBoundaryWhole());
}

TEST(ChildCapabilities, OnlyThePowerStatesComeFromTheBus) {
  tChildStack stack;
  stack.floorCapabilities = talkativeCapabilities();
  tCapabilityQuery query(stack.child);
  EXPECT_EQ(query.request.send(), STATUS_SUCCESS);
  for (u32 state = 0; state < kPowerSystemMaximum; ++state) {
    EXPECT_EQ(static_cast<u32>(query.capabilities().DeviceState[state]), 10 + state);
  }
  EXPECT_EQ(query.capabilities().Flags, 0xEEEC0000 | kFixedFlags);
  EXPECT_EQ(query.capabilities().Address, 7u);
  EXPECT_EQ(query.capabilities().SystemWake, PowerSystemUnspecified);
  EXPECT_EQ(query.capabilities().DeviceWake, PowerDeviceUnspecified);
  EXPECT_EQ(query.capabilities().D1Latency, 0u);
  EXPECT_EQ(query.capabilities().D2Latency, 0u);
  EXPECT_EQ(query.capabilities().D3Latency, 0u);
}

TEST(ChildCapabilities, TheFlagsOfTheSystemStay) {
  EXPECT_EQ(flagsFrom(0, false), kFixedFlags);
  EXPECT_EQ(flagsFrom(0, true), kFixedFlags | 0x40);
  EXPECT_EQ(flagsFrom(0xFFFFFFFF, false), 0xFFFC0000 | kFixedFlags);
  EXPECT_EQ(flagsFrom(0xFFFFFFFF, true), 0xFFFC0000 | kFixedFlags | 0x40);
  EXPECT_EQ(flagsFrom(0x00040000, false), 0x00040000 | kFixedFlags);
  EXPECT_EQ(flagsFrom(0x0003FFFF, false), kFixedFlags);
}

TEST(ChildCapabilities, TheBusIsAskedAsTheSystemAsks) {
  tChildStack stack;
  tCapabilityQuery query(stack.child);
  EXPECT_EQ(query.request.send(), STATUS_SUCCESS);
  EXPECT_EQ(stack.seenMinor, IRP_MN_QUERY_CAPABILITIES);
  EXPECT_EQ(stack.seenStatus, STATUS_NOT_SUPPORTED);
  EXPECT_EQ(stack.seenCapabilities.Size, 64);
  EXPECT_EQ(stack.seenCapabilities.Version, 1);
  EXPECT_EQ(stack.seenCapabilities.Flags, 0u);
  EXPECT_EQ(stack.seenCapabilities.Address, 0xFFFFFFFF);
  EXPECT_EQ(stack.seenCapabilities.UINumber, 0xFFFFFFFF);
}

TEST(ChildCapabilities, AnotherVersionIsRefused) {
  tChildStack stack;
  int const before = stack.floorRequests;
  u16 const versions[] = {0, 2, 0xFFFF};
  for (u16 version : versions) {
    tCapabilityQuery query(stack.child);
    query.capabilities().Version = version;
    EXPECT_EQ(query.request.send(), STATUS_UNSUCCESSFUL);
    EXPECT_TRUE(query.isUntouched());
  }
  EXPECT_EQ(stack.floorRequests, before);
}

TEST(ChildCapabilities, ASmallRecordIsRefused) {
  tChildStack stack;
  int const before = stack.floorRequests;
  u16 const sizes[] = {0, 1, 63};
  for (u16 size : sizes) {
    tCapabilityQuery query(stack.child);
    query.capabilities().Size = size;
    EXPECT_EQ(query.request.send(), STATUS_UNSUCCESSFUL);
    EXPECT_TRUE(query.isUntouched());
  }
  EXPECT_EQ(stack.floorRequests, before);
}

TEST(ChildCapabilities, ALargerRecordIsFilledAsFarAsItIsKnown) {
  tChildStack const stack;
  u16 const sizes[] = {64, 65, 0xFFFF};
  for (u16 size : sizes) {
    tCapabilityQuery query(stack.child);
    query.capabilities().Size = size;
    EXPECT_EQ(query.request.send(), STATUS_SUCCESS);
    EXPECT_EQ(query.capabilities().Size, size);
    EXPECT_EQ(query.capabilities().Address, 7u);
    EXPECT_TRUE(query.isBoundaryWhole());
  }
}

TEST(ChildCapabilities, NoRecordIsRefused) {
  tChildStack const stack;
  tCapabilityQuery query(stack.child);
  query.request.location().Parameters.DeviceCapabilities.Capabilities = nullptr;
  EXPECT_EQ(query.request.send(), STATUS_UNSUCCESSFUL);
}

TEST(ChildCapabilities, ABusThatFailsGivesItsStatus) {
  tChildStack stack;
  NTSTATUS const statuses[] = {STATUS_NOT_SUPPORTED, STATUS_NO_SUCH_DEVICE};
  for (NTSTATUS status : statuses) {
    stack.floorStatus = status;
    tCapabilityQuery query(stack.child);
    EXPECT_EQ(query.request.send(), status);
    EXPECT_TRUE(query.isUntouched());
  }
  stack.floorStatus = STATUS_SUCCESS;
}
