// The slots of a bus of the platform.

#include "conformance/harness.h"
#include "support/recordingBus.h"

namespace {

template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

using tOpenRange = u32(void* object, u64 base, u64 length, u32 flags);
using tReleaseHandle = void(void* object, u32* handle);
using tWriteByte = void(void* object, u32 handle, u64 port, u8 value, u32 access);
using tReadByte = u8(void* object, u32 handle, u64 port, u32 access);

}  // namespace

TEST(BusSlots, DestructorIsFirstAndTheOperationsFollowInOrder) {
  tRecordedPort port;
  iBus* bus = busNewBusObject(kBusSystemIo);
  u32 handle = getSlot<tOpenRange>(bus, 2)(bus, 1, 2, 3);
  getSlot<tWriteByte>(bus, 4)(bus, handle, 0x3F8, 0x61, kBusWriteByte);
  EXPECT_EQ(getSlot<tReadByte>(bus, 5)(bus, handle, 0x3FE, kBusReadByte), 0xB0);
  getSlot<tReleaseHandle>(bus, 3)(bus, &handle);
  busDeleteBusObject(bus);
  EXPECT_STREQ(port.takeEvents(), "new(0) open(1,2,3) w3F8=61 r3FE=B0 release(7) delete ");
}
