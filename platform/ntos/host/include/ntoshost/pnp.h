#pragma once

#include "ntos/io.h"

// The control side of the executive's PnP manager. It keeps the tree of devices, each known by its
// physical device object, and drives them as the kernel's does:
//
//     DEVICE_OBJECT* bus = nullptr;
//     ntoshost::addRootDevice(driver, "SLOTBUS", &bus);  // AddDevice runs
//     ntoshost::startDevice(bus);                        // start, bus relations, children started
//     ntoshost::waitForPnp();
//     DEVICE_OBJECT* child = ntoshost::childOf(bus, 0);
//     ...
//     ntoshost::removeRootDevice(bus);
//
// New children are asked for their capabilities, ids, texts, bus information and resource
// requirements, get the driver that was assigned to one of their hardware or compatible ids
// (AddDevice), and are started. A child without such a driver is started bare when its bus says
// RawDeviceOK in the capabilities or its id has the null driver, and stays Present otherwise.
// Children that the bus does not list any more get a surprise removal if they were started, and
// then a remove, which waits until their last handle is closed. The references of a relations
// answer are kept as long as the device is in the tree. Answers in memory (ids, texts, relations,
// bus information) have to be blocks of PagedPool; the manager frees them.
//
// One operation runs at a time, at PASSIVE_LEVEL, in the caller's thread; the others wait for it. A
// driver must not call in from a PnP request. All of it is thread safe. A `device` is a physical
// device of the tree; what is not gives STATUS_NO_SUCH_DEVICE, and the pointer may be stale.

namespace ntoshost {

enum class DeviceState : u32 {
  Present,          // known, not started, or removed while the bus still lists it
  Started,          //
  StopPending,      // it has agreed to stop
  Stopped,          //
  RemovePending,    // it has agreed to go
  SurpriseRemoved,  // gone, with handles still open
  Failed,           // AddDevice, a query of what is needed or the start failed
};

// Who serves IoInvalidateDeviceRelations: a thread of the executive, as at the start, or whoever
// calls runPnpWork.
enum class PnpMode : u32 { Worker, OnRequest };
void setPnpMode(PnpMode mode);

// Asks every bus whose relations were invalidated for them. Returns how many that were.
u64 runPnpWork();

// Waits until the thread of the executive has nothing left to do.
void waitForPnp();

// Whether new children are started at once, as at the start, or left Present for startDevice.
void setChildrenStart(bool isAutomatic);

// Devices with this hardware or compatible id (case does not count) get the function driver; null
// takes that back. A driver that is unloaded is forgotten. False when memory is exhausted.
bool assignDriver(wchar_t const* id, DRIVER_OBJECT* driver);

// Devices with this id are installed with the null driver, as an INF file does that names no
// service: they are started bare, whatever their bus says. False when memory is exhausted.
// assignDriver with null takes it back.
bool assignNullDriver(wchar_t const* id);

// Makes a physical device of the executive's own, ROOT\<name>\<number from 0000>, and runs the
// driver's AddDevice for it; with null the driver is the one assigned to its id when it starts.
// When AddDevice fails, its status is given and the device is gone again. `name` has up to 63
// characters.
NTSTATUS addRootDevice(DRIVER_OBJECT* driver, char const* name, DEVICE_OBJECT** device);

// Starts a device that has a driver or needs none, as the root devices do, and is Present,
// Failed (once more from AddDevice on) or Stopped, and asks it for its relations and starts its
// children. STATUS_INVALID_DEVICE_REQUEST when it is none of these. Gives what the start gave; a
// device that fails it gets a remove, one that was Stopped a surprise removal before.
NTSTATUS startDevice(DEVICE_OBJECT* device);

// Asks a started device for its bus relations now and takes the consequences.
NTSTATUS enumerateDevice(DEVICE_OBJECT* device);

// Query stop, cancel it, stop. stopDevice without a query before makes that query.
// STATUS_INVALID_DEVICE_REQUEST when the device is not in the state for it.
NTSTATUS queryStopDevice(DEVICE_OBJECT* device);
NTSTATUS cancelStopDevice(DEVICE_OBJECT* device);
NTSTATUS stopDevice(DEVICE_OBJECT* device);

// Query remove of the device and all below it, the lowest first; when one refuses, those that were
// asked get a cancel and its status is given. STATUS_DEVICE_BUSY, and nothing is sent, when one of
// them is open. The cancel goes top down.
NTSTATUS queryRemoveDevice(DEVICE_OBJECT* device);
NTSTATUS cancelRemoveDevice(DEVICE_OBJECT* device);

// Remove of the device and all below it, the lowest first; makes the query if it was not made. The
// device itself stays in the tree, Present, as long as its bus lists it; those below leave it.
NTSTATUS removeDevice(DEVICE_OBJECT* device);

// The device is gone without a word: surprise removal of the device and all below it, the lowest
// first, and then their removal, which waits until all their handles are closed. A root device
// leaves the tree; another one stays, Present, if its bus still lists it.
NTSTATUS surpriseRemoveDevice(DEVICE_OBJECT* device);

// removeDevice, and the physical device leaves the machine.
NTSTATUS removeRootDevice(DEVICE_OBJECT* device);

// Power requests to one device.
NTSTATUS queryPower(DEVICE_OBJECT* device, POWER_STATE_TYPE type, POWER_STATE state);
NTSTATUS setPower(DEVICE_OBJECT* device, POWER_STATE_TYPE type, POWER_STATE state);

// The whole machine goes to a state: query and set for every started device, the lowest first; for
// PowerSystemWorking no query, and the highest first. When one refuses the query, those that agreed
// are set to PowerSystemWorking and its status is given.
NTSTATUS setSystemPower(SYSTEM_POWER_STATE state);

// What PoSetPowerState said last for any device object: PowerDeviceUnspecified or
// PowerSystemUnspecified at the start.
POWER_STATE powerStateOf(DEVICE_OBJECT* device, POWER_STATE_TYPE type);

// One device of the tree as the manager knows it. Texts are empty when the device gave none; longer
// ones are cut.
struct DeviceRecord {
  static constexpr u32 kIdCapacity = 256;     // characters, with the terminator
  static constexpr u32 kIdsCapacity = 1'088;  // characters of all ids, with the empty one

  DEVICE_OBJECT* physical;
  DEVICE_OBJECT* parent;  // null: a root device
  DRIVER_OBJECT* driver;  // of the function device; null: bare
  DeviceState state;
  NTSTATUS failure;  // why it is Failed
  bool isListed;     // the bus has it in its relations
  u64 files;         // how often its stack is open
  wchar_t deviceId[kIdCapacity];
  wchar_t instanceId[kIdCapacity];
  wchar_t hardwareIds[kIdsCapacity];
  wchar_t compatibleIds[kIdsCapacity];
  wchar_t description[kIdCapacity];
  wchar_t location[kIdCapacity];
  bool hasCapabilities;
  DEVICE_CAPABILITIES capabilities;
  bool hasBusInformation;
  PNP_BUS_INFORMATION busInformation;
};

// False when the device is not in the tree.
bool findDevice(DEVICE_OBJECT* device, DeviceRecord& record);

// The children in the order in which the bus listed them first; null behind the last. `parent` null
// means the root devices.
u64 childrenOf(DEVICE_OBJECT* parent);
DEVICE_OBJECT* childOf(DEVICE_OBJECT* parent, u64 index);

// Queries, as the manager makes them, of any device object; the answer is copied (cut at the
// capacity, which is in characters) and its memory given back. An answer without memory gives an
// empty text.
NTSTATUS queryId(DEVICE_OBJECT* device, BUS_QUERY_ID_TYPE type, wchar_t* text, u32 capacity);
NTSTATUS queryText(DEVICE_OBJECT* device, DEVICE_TEXT_TYPE type, wchar_t* text, u32 capacity);
NTSTATUS queryCapabilities(DEVICE_OBJECT* device, DEVICE_CAPABILITIES& capabilities);
NTSTATUS queryBusInformation(DEVICE_OBJECT* device, PNP_BUS_INFORMATION& information);

// The devices of one kind of relations, up to `capacity` of them; their references are given back.
// `*count` is how many there are.
NTSTATUS queryRelations(DEVICE_OBJECT* device, DEVICE_RELATION_TYPE type, DEVICE_OBJECT** devices,
                        u64 capacity, u64* count);

}  // namespace ntoshost
