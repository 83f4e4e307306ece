#include "slotLife.h"

#include "conformance/harness.h"
#include "slotRequests.h"

void liveThrough(DEVICE_OBJECT* device) {
  nSLOTBUS100::tSlotLine line;
  EXPECT_EQ(sendPnp(device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(tellLine(device, line), STATUS_SUCCESS);
  EXPECT_EQ(queryPower(device, PowerDeviceD3), STATUS_SUCCESS);
  EXPECT_EQ(setPower(device, PowerDeviceD3), STATUS_SUCCESS);
  EXPECT_EQ(setPower(device, PowerDeviceD0), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(device, IRP_MN_QUERY_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(device, IRP_MN_STOP_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(device, IRP_MN_START_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(device, IRP_MN_QUERY_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(sendPnp(device, IRP_MN_CANCEL_REMOVE_DEVICE), STATUS_SUCCESS);
  EXPECT_EQ(tellLine(device, line), STATUS_SUCCESS);
}
