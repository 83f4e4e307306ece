#pragma once

// A bus of the test's own: a floor device that completes what comes down to it, the platform's
// function device on top of it, and children made by hand.

#include "ntos/fastMutex.h"
#include "support/tDeviceRequest.h"
#include "support/tTestDriver.h"
#include "vexk/iChildBus.h"
#include "vexk/iChildHandler.h"
#include "vexk/iDeviceComponent.h"

// Serves a child's device controls as it is told to, and remembers the last one.
class tChildHandler : public iChildHandler {
 public:
  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;

  // What comes back.
  u64 information = 0;
  i32 status = 0;

  // What came.
  int calls = 0;
  bool wasClear = false;  // information and status were 0 before
  u32 code = 0;
  void* input = nullptr;
  u32 inputLength = 0;
  void* output = nullptr;
  u32 outputLength = 0;
};

constexpr GUID kTestBusType = {0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr u32 kTestBusNumber = 42;

// A description that is complete; a test changes what it is about.
struct tTestChild {
  tTestChild(tChildHandler& handler, u64 instance, u32 slot);
  tTestChild(tTestChild const&) = delete;
  tTestChild& operator=(tTestChild const&) = delete;

  wchar_t const* ids[2];
  tChildDescription description;
};

// Where there is no memory for the devices, bus() and floor() are null.
class tBusStack : public iDeviceComponent {
 public:
  tBusStack();
  ~tBusStack();
  tBusStack(tBusStack const&) = delete;
  tBusStack& operator=(tBusStack const&) = delete;

  DEVICE_OBJECT* bus() const { return function; }
  DEVICE_OBJECT* floor() const { return floorDevice; }
  tTestDriver const& driver() const { return testDriver; }

  // Requests to the bus; the status that they are completed with.
  NTSTATUS startBus() { return sendPnp(function, IRP_MN_START_DEVICE); }
  NTSTATUS removeBus();

  // Makes a child and gives its status and its device, which nobody has been told of. A bus that
  // was never started makes none.
  static constexpr i32 kNotStarted = -1;
  i32 create(tChildDescription const& description);
  void create(tChildDescription const& description, i32& status);
  void remove(u32 slot, i32& status) const;
  DEVICE_OBJECT* add(u64 instance, u32 slot);

  // Asks for the bus' relations. How many there are; the references are given back.
  u32 countRelations();

  // What the component is told.
  void start(iChildBus* place, i32& status) override;
  void stop(bool isSurprise) override;
  void handleDeviceControl(u32 code, void* input, u32 inputLength, void* output, u32 outputLength,
                           u64* information, i32* status) override;
  void release() override { ++releases; }

  iChildBus* children = nullptr;  // of the last start
  int starts = 0;
  int stops = 0;
  int releases = 0;
  tChildHandler handler;  // of the children that add() makes

  // What the floor does, and has seen last. It completes plug and play with the one status, all
  // else with the other.
  NTSTATUS floorStatus = STATUS_SUCCESS;
  NTSTATUS otherStatus = STATUS_SUCCESS;
  DEVICE_CAPABILITIES floorCapabilities = {};
  DEVICE_CAPABILITIES seenCapabilities = {};  // as the query came
  NTSTATUS seenStatus = STATUS_SUCCESS;       // that a request came with
  int floorRequests = 0;

  // The floor keeps the next query of its capabilities, or of its relations, until it is told to
  // complete it, for which completeKept() waits.
  bool keepsCapabilities = false;
  bool keepsRelations = false;
  IRP* kept = nullptr;  // read and written atomically
  void completeKept();
  u8 seenMajor = 0xFF;
  u8 seenMinor = 0xFF;

 private:
  static NTSTATUS dispatch(DEVICE_OBJECT* device, IRP* irp);

  NTSTATUS serveFloor(IRP& irp);
  NTSTATUS keep(IRP& irp);
  void note(IRP const& irp, IO_STACK_LOCATION const& location);
  bool makeFloor();

  tTestDriver testDriver;
  DEVICE_OBJECT* floorDevice = nullptr;
  FAST_MUTEX noting;
  DEVICE_OBJECT* function = nullptr;
};
