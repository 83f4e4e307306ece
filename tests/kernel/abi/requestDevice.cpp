// The device over which programs send requests, opened and spoken to as they do.

#include "vexkwindows/requestDevice.h"

#include "conformance/harness.h"
#include "driver/tOpenDevice.h"
#include "driver/testDriver.h"
#include "oxdiagk/instanceRegistry.h"
#include "support/tunnelRecords.h"
#include "tRequestDevice.h"
#include "vexk/statusCodes.h"

using namespace nOXDIAG100;

TEST(RequestDevice, IsThere) {
  tOpenDevice const device;
  EXPECT_EQ(STATUS_SUCCESS, device.status);
}

TEST(RequestDevice, CarriesARequestToTheTunnel) {
  tOpenDevice device;
  u32 handle = 0;
  tTestRequest const request(kNoHandle, acquireRecord(&handle, "assert"));
  device.name(kTunnelName);
  device.input.request = addressOf(&request);
  EXPECT_EQ(STATUS_SUCCESS, device.deliver());
  EXPECT_EQ(sizeof(tRequestOutput), device.moved);
  EXPECT_EQ(0, device.output.status);
  EXPECT_TRUE(handle >= kFirstHandle);
  releaseInstance(handle);
}

TEST(RequestDevice, TellsTheStatusOfTheDelivery) {
  tOpenDevice device;
  device.name("nTEST://nNobody");
  EXPECT_EQ(STATUS_SUCCESS, device.deliver());
  EXPECT_EQ(kStatusNoDispatcher, device.output.status);
}

TEST(RequestDevice, TakesNamesOfOneToAllCharacters) {
  tOpenDevice device;
  u32 const lengths[] = {1, kRequestNameSize};
  for (u32 length : lengths) {
    device.input.nameLength = length;
    EXPECT_EQ(STATUS_SUCCESS, device.deliver());
    EXPECT_EQ(kStatusNoDispatcher, device.output.status);
  }
  u32 const badLengths[] = {0, kRequestNameSize + 1, 0xFFFFFFFF};
  for (u32 length : badLengths) {
    device.input.nameLength = length;
    EXPECT_EQ(STATUS_INVALID_PARAMETER, device.deliver());
    EXPECT_EQ(0u, device.moved);
  }
}

TEST(RequestDevice, RefusesBuffersOfAnotherSize) {
  constexpr u32 kInput = sizeof(tRequestInput);
  constexpr u32 kOutput = sizeof(tRequestOutput);
  tOpenDevice device;
  device.name(kTunnelName);
  u32 const lengths[] = {0, 1, kInput / 2, kInput - 1, kInput + 1};
  for (u32 length : lengths) {
    EXPECT_EQ(STATUS_INFO_LENGTH_MISMATCH, device.control(kRequestDeliver, length, kOutput));
  }
  u32 const outputLengths[] = {0, kOutput - 1, kOutput + 1};
  for (u32 length : outputLengths) {
    EXPECT_EQ(STATUS_INFO_LENGTH_MISMATCH, device.control(kRequestDeliver, kInput, length));
  }
  EXPECT_EQ(77, device.output.status);
}

TEST(RequestDevice, RefusesOtherControls) {
  tOpenDevice device;
  u32 const codes[] = {0, kRequestDeliver + 4, kRequestDeliver ^ 0x10000};
  for (u32 code : codes) {
    EXPECT_EQ(STATUS_INVALID_DEVICE_REQUEST,
              device.control(code, sizeof(tRequestInput), sizeof(tRequestOutput)));
  }
}

TEST(RequestDevice, ARequestAtABadAddressIsServedAsNone) {
  tOpenDevice device;
  device.name(kTunnelName);
  device.input.request = 16;
  EXPECT_EQ(STATUS_SUCCESS, device.deliver());
  EXPECT_EQ(0, device.output.status);
}

// The tests' own object of the class finds the names taken, as the driver would if somebody else
// had them: it makes nothing, and takes nothing away.
TEST(RequestDevice, OneWhoseNameIsTakenIsNotMade) {
  tRequestDevice second;
  EXPECT_EQ(STATUS_OBJECT_NAME_COLLISION, second.open(*testDriverObject));
  second.close();
  tOpenDevice device;
  device.name("nTEST://nNobody");
  EXPECT_EQ(STATUS_SUCCESS, device.deliver());
  EXPECT_EQ(kStatusNoDispatcher, device.output.status);
}
