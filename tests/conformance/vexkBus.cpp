// Bus objects of the platform. The system's ports themselves are not touched here.

#include "conformance/harness.h"
#include "support/recordingBus.h"

TEST(VexkBus, FactoryMakesEveryKindOfBus) {
  tRecordedPort port;
  iBus* system = busNewBusObject(kBusSystemIo);
  iBus* other = busNewBusObject(0xFFFFFFFF);
  EXPECT_TRUE(system != nullptr);
  EXPECT_TRUE(other != nullptr);
  busDeleteBusObject(system);
  busDeleteBusObject(other);
  EXPECT_STREQ(port.takeEvents(), "new(0) new(FFFFFFFF) delete delete ");
}

TEST(VexkBus, FactoryThatHasNoneGivesNull) {
  tRecordedPort port;
  port->isBusMissing = true;
  EXPECT_TRUE(busNewBusObject(kBusSystemIo) == nullptr);
}

TEST(VexkBus, NullFactoryRestoresTheSystemBus) {
  { tRecordedPort const port; }
  busRecord.clear();
  iBus* bus = busNewBusObject(kBusSystemIo);
  EXPECT_TRUE(bus != nullptr);
  busDeleteBusObject(bus);
  EXPECT_STREQ(busRecord.events, "");
}

TEST(VexkBus, DeletionClearsThePointerAndIgnoresNull) {
  tRecordedPort port;
  iBus* bus = busNewBusObject(kBusSystemIo);
  busDeleteBusObject(bus);
  EXPECT_TRUE(bus == nullptr);
  busDeleteBusObject(bus);
  EXPECT_STREQ(port.takeEvents(), "new(0) delete ");
}

// Ports need the privilege of a real kernel, which a test may not have: what is refused touches
// none.
TEST(VexkBus, SystemBusRefusesWhatItDoesNotHave) {
  iBus* bus = busNewBusObject(kBusSystemIo);
  ASSERT_TRUE(bus != nullptr);
  EXPECT_EQ(bus->openRange(0x3F8, 8, 0), u32{0});
  EXPECT_EQ(bus->openRange(0, 0, 1), u32{0});
  u32 handle = bus->openRange(0, 0, 0);
  EXPECT_NE(handle, u32{0});
  EXPECT_EQ(bus->readByte(0, 0x3FE, kBusReadByte), kBusNoAnswer);
  EXPECT_EQ(bus->readByte(handle, 0x3FE, kBusWriteByte), kBusNoAnswer);
  EXPECT_EQ(bus->readByte(handle, 0x103FE, kBusReadByte), kBusNoAnswer);
  bus->writeByte(0, 0x3F8, 'x', kBusWriteByte);
  bus->writeByte(handle, 0x3F8, 'x', kBusReadByte);
  bus->writeByte(handle, 0x103F8, 'x', kBusWriteByte);
  bus->releaseHandle(nullptr);
  bus->releaseHandle(&handle);
  EXPECT_EQ(handle, u32{0});
  bus->releaseHandle(&handle);
  busDeleteBusObject(bus);
  EXPECT_TRUE(bus == nullptr);
  busDeleteBusObject(bus);
}

TEST(VexkBus, UnknownKindOfBusHasNone) {
  EXPECT_TRUE(busNewBusObject(1) == nullptr);
  EXPECT_TRUE(busNewBusObject(0xFFFFFFFF) == nullptr);
}
