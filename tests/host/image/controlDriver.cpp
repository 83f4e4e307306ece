// The driver of the control device as the kernel has it: mapped, served from, stopped while
// programs have it open, unmapped.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "ntos/status.h"
#include "ntos/string.h"
#include "ntoshost/executive.h"
#include "oxdiagk/tunnelRequest.h"
#include "tImage.h"
#include "tPlatform.h"
#include "trace/capturedPrint.h"
#include "vexk/statusCodes.h"
#include "vexkwindows/requestDevice.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kUnloads = 1000;
constexpr u32 kLibraryUnloads = 60;
constexpr u32 kCallers = 8;

bool isMapped() {
  void* const known = dlopen(OXDIAG_CONTROL_IMAGE, RTLD_NOW | RTLD_NOLOAD);
  if (known != nullptr) dlclose(known);
  return known != nullptr;
}

NTSTATUS load(DRIVER_OBJECT** driver) {
  return ntoshost::loadDriverImage("oxdiagcontrol", OXDIAG_CONTROL_IMAGE, driver);
}

// A program that has the device open, if it could be opened.
class tProgram {
 public:
  tProgram() : status(ntoshost::openDevice(kRequestDeviceLink, &file)) {}
  ~tProgram() { close(); }
  tProgram(tProgram const&) = delete;
  tProgram& operator=(tProgram const&) = delete;

  void close() {
    if (file != nullptr) ntoshost::closeDevice(file);
    file = nullptr;
  }

  NTSTATUS control(u32 code, u32 inputLength, u32 outputLength) {
    ntoshost::DeviceControl call = {.code = code,
                                    .input = &input,
                                    .inputLength = inputLength,
                                    .output = &output,
                                    .outputLength = outputLength};
    NTSTATUS const ended = ntoshost::controlDevice(file, call);
    moved = call.information;
    return ended;
  }

  NTSTATUS deliver(void const* request) {
    input.request = reinterpret_cast<u64>(request);
    input.nameLength = sizeof(kTunnelName) - 1;
    __builtin_memcpy(input.name, kTunnelName, input.nameLength);
    return control(kRequestDeliver, sizeof(input), sizeof(output));
  }

  // One operation of the tunnel; true when it was served and the tunnel is there.
  bool run(u32 handle, tTunnelRecord const& record) {
    struct {
      tTunnelHeader header;
      tTunnelRecord record;
    } const request = {{handle, 1}, record};
    return deliver(&request) == STATUS_SUCCESS && output.status == 0;
  }

  FILE_OBJECT* file = nullptr;
  NTSTATUS const status;
  tRequestInput input = {};
  tRequestOutput output = {77};
  u64 moved = 0;
};

// Acquires a handle of the trace and gives it back.
bool useTunnel(tProgram& program) {
  constexpr char kName[] = "trace";
  u32 handle = 0;
  bool const isAcquired = program.run(0, {kTunnelAcquire, 0, reinterpret_cast<u64>(&handle),
                                          reinterpret_cast<u64>(kName), sizeof(kName) - 1});
  return isAcquired && handle != 0 && program.run(handle, {kTunnelRelease, 0, 0, 0, 0});
}

// The entry of a driver that has the device's name for its own.
NTSTATUS takeName(DRIVER_OBJECT* driver, UNICODE_STRING* /*registryPath*/) {
  driver->DriverUnload = [](DRIVER_OBJECT* leaving) { IoDeleteDevice(leaving->DeviceObject); };
  UNICODE_STRING name;
  RtlInitUnicodeString(&name, kRequestDeviceName);
  DEVICE_OBJECT* device = nullptr;
  return IoCreateDevice(driver, 0, &name, FILE_DEVICE_UNKNOWN, 0, 0, &device);
}

class ControlDriver : public testing::Test {
 protected:
  ControlDriver() {
    loadLibrary();
    EXPECT_EQ(load(&driver), STATUS_SUCCESS);
  }
  ~ControlDriver() override {
    if (driver != nullptr) {
      EXPECT_EQ(stop(), STATUS_SUCCESS);
    }
    EXPECT_FALSE(isMapped());
    if (image != nullptr) unloadLibrary();
    ntoshost::requireNoDevices("the test");
  }

  void loadLibrary() {
    image = std::make_unique<tImage>();
    EXPECT_EQ(image->initialise(), STATUS_SUCCESS);
  }

  // Its image is unmapped.
  void unloadLibrary() {
    EXPECT_EQ(image->unload(), STATUS_SUCCESS);
    image = nullptr;
  }

  NTSTATUS stop() {
    DRIVER_OBJECT* const stopped = driver;
    driver = nullptr;
    return ntoshost::stopDriver(stopped);
  }

  tPlatform platform;
  std::unique_ptr<tImage> image;
  DRIVER_OBJECT* driver = nullptr;
};

}  // namespace

TEST_F(ControlDriver, ServesPrograms) {
  tProgram program;
  ASSERT_EQ(program.status, STATUS_SUCCESS);
  EXPECT_TRUE(useTunnel(program));
  EXPECT_EQ(program.moved, sizeof(tRequestOutput));
}

TEST_F(ControlDriver, GivesItsDeviceASecurityOfItsOwn) {
  EXPECT_TRUE(ntoshost::hasOwnSecurity(driver->DeviceObject));
  EXPECT_EQ(driver->DeviceObject->Flags & DO_DEVICE_INITIALIZING, 0u);
  EXPECT_EQ(driver->DeviceObject->Characteristics & FILE_DEVICE_SECURE_OPEN,
            FILE_DEVICE_SECURE_OPEN);
}

TEST_F(ControlDriver, LetsInAdministratorsAndTheSystemAlone) {
  constexpr u32 kSystem = 0;
  constexpr u32 kStranger = 54'321;
  ntoshost::setCallerUser(kStranger);
  EXPECT_EQ(tProgram().status, STATUS_ACCESS_DENIED);
  ntoshost::setCallerUser(kSystem);
  EXPECT_EQ(tProgram().status, STATUS_SUCCESS);
  ntoshost::setCallerUser(ntoshost::kOwnUser);
  EXPECT_EQ(tProgram().status, STATUS_SUCCESS);
}

TEST_F(ControlDriver, Refuses32bitPrograms) {
  tProgram program;
  ntoshost::set32bitProcess(true);
  EXPECT_EQ(program.deliver(nullptr), STATUS_NOT_SUPPORTED);
  ntoshost::set32bitProcess(false);
  EXPECT_EQ(program.deliver(nullptr), STATUS_SUCCESS);
}

TEST_F(ControlDriver, RefusesWhatIsNoRequest) {
  constexpr u32 kInput = sizeof(tRequestInput);
  constexpr u32 kOutput = sizeof(tRequestOutput);
  tProgram program;
  EXPECT_EQ(program.control(kRequestDeliver + 4, kInput, kOutput), STATUS_INVALID_DEVICE_REQUEST);
  EXPECT_EQ(program.control(kRequestDeliver, kInput - 1, kOutput), STATUS_INFO_LENGTH_MISMATCH);
  EXPECT_EQ(program.control(kRequestDeliver, 0, kOutput), STATUS_INFO_LENGTH_MISMATCH);
  EXPECT_EQ(program.control(kRequestDeliver, kInput, kOutput + 1), STATUS_INFO_LENGTH_MISMATCH);
  for (u32 length : {0u, 129u, 0xFFFFFFFFu}) {
    program.input.nameLength = length;
    EXPECT_EQ(program.control(kRequestDeliver, kInput, kOutput), STATUS_INVALID_PARAMETER);
  }
  EXPECT_EQ(program.output.status, 77);
}

TEST_F(ControlDriver, OutlivesTheLibrary) {
  tProgram program;
  EXPECT_TRUE(useTunnel(program));
  unloadLibrary();
  EXPECT_EQ(program.deliver(nullptr), STATUS_SUCCESS);
  EXPECT_EQ(program.output.status, kStatusNoDispatcher);
}

TEST_F(ControlDriver, StaysUntilTheLastProgramHasClosedIt) {
  tProgram first;
  tProgram second;
  EXPECT_EQ(stop(), STATUS_PENDING);
  EXPECT_EQ(tProgram().status, STATUS_NO_SUCH_DEVICE);
  first.close();
  EXPECT_TRUE(useTunnel(second));
  EXPECT_TRUE(isMapped());
  second.close();
  EXPECT_FALSE(isMapped());
  EXPECT_EQ(tProgram().status, STATUS_OBJECT_NAME_NOT_FOUND);
}

TEST_F(ControlDriver, IsStoppedOnce) {
  tProgram program;
  EXPECT_EQ(ntoshost::stopDriver(driver), STATUS_PENDING);
  EXPECT_EQ(ntoshost::stopDriver(driver), STATUS_DEVICE_BUSY);
  driver = nullptr;
}

TEST_F(ControlDriver, IsNotStartedWhereTheNameIsTaken) {
  EXPECT_EQ(stop(), STATUS_SUCCESS);
  DRIVER_OBJECT* other = nullptr;
  ASSERT_EQ(ntoshost::loadDriver("other", takeName, &other), STATUS_SUCCESS);
  tCapturedPrint const print;
  EXPECT_EQ(load(&driver), STATUS_OBJECT_NAME_COLLISION);
  EXPECT_EQ(print.text(),
            "[oxdiagcontrol] no programs are served, the device cannot be made: 0xC0000035\n");
  EXPECT_EQ(ntoshost::stopDriver(other), STATUS_SUCCESS);
}

TEST_F(ControlDriver, AFailedStartLeavesNothing) {
  EXPECT_EQ(stop(), STATUS_SUCCESS);
  tCapturedPrint const print;
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultAll, [](u64) {
    DRIVER_OBJECT* started = nullptr;
    NTSTATUS const status = load(&started);
    EXPECT_EQ(started != nullptr, NT_SUCCESS(status));
    EXPECT_EQ(isMapped(), NT_SUCCESS(status));
    if (started != nullptr) {
      EXPECT_EQ(ntoshost::stopDriver(started), STATUS_SUCCESS);
    }
    ntoshost::requireNoDevices("the start");
    ntoshost::requireNoHandles("the start");
  });
  EXPECT_GE(failures, 4u);  // the device, its handle, its security, its link
}

// Whoever is within a request while the driver is stopped comes out of an image that is there; an
// unmapped one would stop the program.
TEST_F(ControlDriver, IsUnloadedBesideCallers) {
  std::atomic<bool> isOver = false;
  std::atomic<u32> served = 0;
  std::atomic<u32> refused = 0;
  auto const call = [&] {
    while (!isOver) {
      tProgram program;
      if (NT_SUCCESS(program.status)) {
        if (useTunnel(program)) ++served;
      } else {
        ++refused;
        std::this_thread::yield();
      }
    }
  };
  std::vector<std::thread> callers;
  for (u32 count = 0; count < kCallers; ++count) callers.emplace_back(call);
  u32 pending = 0;
  for (u32 round = 0; round < kUnloads; ++round) {
    if (driver == nullptr) {
      ASSERT_EQ(load(&driver), STATUS_SUCCESS);
    }
    u32 const before = served;
    while (served < before + kCallers / 2) std::this_thread::yield();
    NTSTATUS const status = stop();
    ASSERT_TRUE(NT_SUCCESS(status));
    if (status == STATUS_PENDING) ++pending;
    while (ntoshost::countDevices().drivers != 0) std::this_thread::yield();
    ASSERT_FALSE(isMapped());
  }
  isOver = true;
  for (std::thread& caller : callers) caller.join();
  EXPECT_GT(pending, kUnloads / 100);  // stopped while somebody was within
  EXPECT_GT(refused, 0u);
}

// The library goes with the last driver that uses it, whoever is within its tunnel; the driver of
// the device stays. Who is within comes out of an image that is there, as above.
TEST_F(ControlDriver, ServesWhileTheLibraryComesAndGoes) {
  std::atomic<bool> isOver = false;
  std::atomic<u32> served = 0;
  std::atomic<u32> unserved = 0;
  auto const call = [&] {
    tProgram program;
    ASSERT_EQ(program.status, STATUS_SUCCESS);
    while (!isOver) ++(useTunnel(program) ? served : unserved);
  };
  std::vector<std::thread> callers;
  for (u32 count = 0; count < kCallers; ++count) callers.emplace_back(call);
  for (u32 round = 0; round < kLibraryUnloads; ++round) {
    if (image == nullptr) loadLibrary();
    u32 const before = served;
    while (served < before + kCallers) std::this_thread::yield();
    unloadLibrary();
  }
  isOver = true;
  for (std::thread& caller : callers) caller.join();
  EXPECT_GT(unserved, 0u);
}
