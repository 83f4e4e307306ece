#pragma once

#include "ntos/io.h"
#include "slotbus/component/slotControl.h"

// The requests that a device in a slot gets, sent to the top of its stack. Each returns the status
// of its completion. PASSIVE_LEVEL.

NTSTATUS sendPnp(DEVICE_OBJECT* device, u8 minor);
NTSTATUS setPower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state);
NTSTATUS queryPower(DEVICE_OBJECT* device, DEVICE_POWER_STATE state);

// The answers are the caller's, who gives them back with giveBack.
NTSTATUS queryId(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type, wchar_t*& answer);
NTSTATUS queryText(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type, wchar_t*& answer);
NTSTATUS queryBusInformation(DEVICE_OBJECT* device, PNP_BUS_INFORMATION*& answer);
void giveBack(void* answer);

NTSTATUS queryCapabilities(DEVICE_OBJECT* device, DEVICE_CAPABILITIES& capabilities);

// All zeros when that fails.
NTSTATUS tellLine(DEVICE_OBJECT* device, nSLOTBUS100::tSlotLine& line);

// Whether the wide text is this ASCII text; null is no text.
bool isText(wchar_t const* seen, char const* wanted);
