// Requests on their way down and up.

#include <gtest/gtest.h>

#include <span>
#include <thread>
#include <vector>

#include "testDriver.h"
#include "waiting.h"

namespace {

class Requests : public DriverTest {
 protected:
  // A request of the test's own for the device, with a device control in it.
  static IRP* allocate(DEVICE_OBJECT* device) {
    IRP* const request = IoAllocateIrp(device->StackSize, 0);
    IoGetNextIrpStackLocation(request)->MajorFunction = IRP_MJ_DEVICE_CONTROL;
    return request;
  }

  // Keeps the request for later.
  Dispatch keep() {
    return [this](DEVICE_OBJECT*, IRP* request) {
      IoMarkIrpPending(request);
      m_kept = request;
      return STATUS_PENDING;
    };
  }

  IRP* m_kept = nullptr;
};

// What a completion routine saw.
struct Seen {
  DEVICE_OBJECT* device = nullptr;
  NTSTATUS status = STATUS_UNSUCCESSFUL;
  int calls = 0;
  bool wasPending = false;
  NTSTATUS answer = STATUS_SUCCESS;
};

NTSTATUS see(DEVICE_OBJECT* device, IRP* request, void* context) {
  Seen& seen = *static_cast<Seen*>(context);
  ++seen.calls;
  seen.device = device;
  seen.status = request->IoStatus.Status;
  seen.wasPending = request->PendingReturned != 0;
  return seen.answer;
}

TEST_F(Requests, TheStatusOfTheDriverComesBack) {
  DEVICE_OBJECT* const device = makeDevice(
      [](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_NO_SUCH_FILE, 7); });
  ntoshost::DeviceControl control = {.code = kCode};
  EXPECT_EQ(ntoshost::controlDevice(device, control), STATUS_NO_SUCH_FILE);
  EXPECT_EQ(control.information, 7u);
  IoDeleteDevice(device);
}

TEST_F(Requests, TheLocationSaysWhatIsAskedFor) {
  u8 input[3] = {};
  u8 output[5] = {};
  DEVICE_OBJECT* const device = makeDevice([&](DEVICE_OBJECT* self, IRP* request) {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    EXPECT_EQ(location.MajorFunction, IRP_MJ_DEVICE_CONTROL);
    EXPECT_EQ(location.DeviceObject, self);
    EXPECT_EQ(location.Parameters.DeviceIoControl.IoControlCode, kCode);
    EXPECT_EQ(location.Parameters.DeviceIoControl.Type3InputBuffer, input);
    EXPECT_EQ(location.Parameters.DeviceIoControl.InputBufferLength, 3u);
    EXPECT_EQ(location.Parameters.DeviceIoControl.OutputBufferLength, 5u);
    EXPECT_EQ(request->UserBuffer, output);
    EXPECT_EQ(request->RequestorMode, UserMode);
    return complete(request, STATUS_SUCCESS);
  });
  ntoshost::DeviceControl control = {
      .code = kCode, .input = input, .inputLength = 3, .output = output, .outputLength = 5};
  EXPECT_EQ(ntoshost::controlDevice(device, control), STATUS_SUCCESS);
  IoDeleteDevice(device);
}

TEST_F(Requests, ABufferedControlIsCopiedBothWays) {
  DEVICE_OBJECT* const device = makeDevice([](DEVICE_OBJECT*, IRP* request) {
    char* const buffer = static_cast<char*>(request->AssociatedIrp.SystemBuffer);
    EXPECT_STREQ(buffer, "ab");
    for (char& character : std::span(buffer, 8)) character = 'z';
    return complete(request, STATUS_SUCCESS, 2);
  });
  char input[] = "ab";
  char output[9] = "........";
  ntoshost::DeviceControl control = {
      .code = kBufferedCode, .input = input, .inputLength = 3, .output = output, .outputLength = 8};
  EXPECT_EQ(ntoshost::controlDevice(device, control), STATUS_SUCCESS);
  EXPECT_STREQ(output, "zz......");
  EXPECT_STREQ(input, "ab");
  IoDeleteDevice(device);
}

TEST_F(Requests, AFailedBufferedControlCopiesNothing) {
  DEVICE_OBJECT* const device = makeDevice(
      [](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_UNSUCCESSFUL, 2); });
  char output[] = "....";
  ntoshost::DeviceControl control = {.code = kBufferedCode, .output = output, .outputLength = 4};
  EXPECT_EQ(ntoshost::controlDevice(device, control), STATUS_UNSUCCESSFUL);
  EXPECT_STREQ(output, "....");
  IoDeleteDevice(device);
}

TEST_F(Requests, DirectMethodsAreNotServed) {
  DEVICE_OBJECT* const device = makeDevice();
  ntoshost::DeviceControl control = {.code = kCode - 1};
  EXPECT_EQ(ntoshost::controlDevice(device, control), STATUS_NOT_SUPPORTED);
  IoDeleteDevice(device);
}

TEST_F(Requests, ADriverWithoutADispatchRefuses) {
  DRIVER_OBJECT* bare = nullptr;
  auto const entry = [](DRIVER_OBJECT* driver, UNICODE_STRING*) {
    driver->DriverUnload = [](DRIVER_OBJECT*) {};
    return STATUS_SUCCESS;
  };
  ASSERT_EQ(ntoshost::loadDriver("bare", entry, &bare), STATUS_SUCCESS);
  DEVICE_OBJECT* device = nullptr;
  IoCreateDevice(bare, 0, nullptr, FILE_DEVICE_UNKNOWN, 0, 0, &device);
  EXPECT_EQ(send(device), STATUS_INVALID_DEVICE_REQUEST);
  IoDeleteDevice(device);
  EXPECT_EQ(ntoshost::unloadDriver(bare), STATUS_SUCCESS);
}

TEST_F(Requests, ItGoesToTheTopOfTheStackAndDown) {
  DEVICE_OBJECT* const bottom = makeDevice(
      [](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_NO_SUCH_FILE); });
  DEVICE_OBJECT* const filter = makeFilter(bottom);
  EXPECT_EQ(send(bottom), STATUS_NO_SUCH_FILE);
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

TEST_F(Requests, ACompletionRoutineSeesTheResultOnTheWayUp) {
  Seen seen;
  DEVICE_OBJECT* const bottom = makeDevice(
      [](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_NO_SUCH_FILE); });
  DEVICE_OBJECT* const filter = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    IoCopyCurrentIrpStackLocationToNext(request);
    IoSetCompletionRoutine(request, see, &seen, true, true, true);
    return IoCallDriver(bottom, request);
  });
  IoAttachDeviceToDeviceStack(filter, bottom);
  EXPECT_EQ(send(bottom), STATUS_NO_SUCH_FILE);
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.device, filter);
  EXPECT_EQ(seen.status, STATUS_NO_SUCH_FILE);
  EXPECT_FALSE(seen.wasPending);
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

TEST_F(Requests, ACompletionRoutineIsCalledForWhatItAskedFor) {
  NTSTATUS status = STATUS_SUCCESS;
  DEVICE_OBJECT* const device =
      makeDevice([&](DEVICE_OBJECT*, IRP* request) { return complete(request, status); });
  auto const callsOf = [&](bool onSuccess, bool onError) {
    Seen seen = {.answer = STATUS_MORE_PROCESSING_REQUIRED};
    Seen watcher = {.answer = STATUS_MORE_PROCESSING_REQUIRED};
    IRP* const request = IoAllocateIrp(2, 0);
    IoSetCompletionRoutine(request, see, &watcher, true, true, true);
    IoGetNextIrpStackLocation(request)->MajorFunction = IRP_MJ_DEVICE_CONTROL;
    IoGetNextIrpStackLocation(request)->DeviceObject = device;
    --request->CurrentLocation;
    --request->Tail.Overlay.CurrentStackLocation;
    IoCopyCurrentIrpStackLocationToNext(request);
    IoSetCompletionRoutine(request, see, &seen, onSuccess, onError, false);
    IoCallDriver(device, request);
    if (seen.calls != 0) complete(request, status);
    EXPECT_EQ(watcher.calls, 1);
    IoFreeIrp(request);
    return seen.calls;
  };
  EXPECT_EQ(callsOf(true, false), 1);
  EXPECT_EQ(callsOf(false, true), 0);
  status = STATUS_UNSUCCESSFUL;
  EXPECT_EQ(callsOf(true, false), 0);
  EXPECT_EQ(callsOf(false, true), 1);
  IoDeleteDevice(device);
}

TEST_F(Requests, AStoppedRequestIsItsOwnersAgain) {
  DEVICE_OBJECT* const device =
      makeDevice([](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_SUCCESS, 5); });
  Seen seen = {.answer = STATUS_MORE_PROCESSING_REQUIRED};
  IRP* const request = allocate(device);
  IoSetCompletionRoutine(request, see, &seen, true, true, true);
  EXPECT_EQ(IoCallDriver(device, request), STATUS_SUCCESS);
  EXPECT_EQ(seen.device, nullptr);
  EXPECT_EQ(request->IoStatus.Information, 5u);
  EXPECT_EQ(ntoshost::countDevices().requests, 1u);
  IoFreeIrp(request);
  EXPECT_EQ(ntoshost::countDevices().requests, 0u);
  IoDeleteDevice(device);
}

TEST_F(Requests, AStoppedRequestIsSentOnceMore) {
  int calls = 0;
  DEVICE_OBJECT* const bottom = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    return complete(request, ++calls == 1 ? STATUS_UNSUCCESSFUL : STATUS_SUCCESS);
  });
  Seen seen = {.answer = STATUS_MORE_PROCESSING_REQUIRED};
  DEVICE_OBJECT* const filter = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    for (int i = 0; i < 2; ++i) {
      IoCopyCurrentIrpStackLocationToNext(request);
      IoSetCompletionRoutine(request, see, &seen, true, true, true);
      IoCallDriver(bottom, request);
    }
    return complete(request, request->IoStatus.Status);
  });
  IoAttachDeviceToDeviceStack(filter, bottom);
  EXPECT_EQ(send(filter), STATUS_SUCCESS);
  EXPECT_EQ(seen.calls, 2);
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

TEST_F(Requests, APendingRequestIsWaitedFor) {
  DEVICE_OBJECT* const bottom = makeDevice(keep());
  DEVICE_OBJECT* const filter = makeFilter(bottom);
  std::thread completer([&] {
    while (__atomic_load_n(&m_kept, __ATOMIC_ACQUIRE) == nullptr) pause(1);
    pause(20);
    complete(m_kept, STATUS_NO_SUCH_FILE);
  });
  setDispatch(bottom, [&](DEVICE_OBJECT*, IRP* request) {
    IoMarkIrpPending(request);
    __atomic_store_n(&m_kept, request, __ATOMIC_RELEASE);
    return STATUS_PENDING;
  });
  EXPECT_EQ(send(bottom), STATUS_NO_SUCH_FILE);
  completer.join();
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

TEST_F(Requests, ADriverWaitsForTheOnesBelow) {
  DEVICE_OBJECT* const bottom = makeDevice([](DEVICE_OBJECT*, IRP* request) {
    IoMarkIrpPending(request);
    std::thread([request] { complete(request, STATUS_SUCCESS, 3); }).detach();
    return STATUS_PENDING;
  });
  DEVICE_OBJECT* const filter = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    KEVENT event;
    KeInitializeEvent(&event, NotificationEvent, 0);
    auto const wake = [](DEVICE_OBJECT*, IRP*, void* context) {
      KeSetEvent(static_cast<KEVENT*>(context), 0, 0);
      return STATUS_MORE_PROCESSING_REQUIRED;
    };
    IoCopyCurrentIrpStackLocationToNext(request);
    IoSetCompletionRoutine(request, wake, &event, true, true, true);
    if (IoCallDriver(bottom, request) == STATUS_PENDING) waitForever(&event);
    return complete(request, request->IoStatus.Status, request->IoStatus.Information + 1);
  });
  IoAttachDeviceToDeviceStack(filter, bottom);
  for (int i = 0; i < 50; ++i) {
    ntoshost::DeviceControl control = {.code = kCode};
    EXPECT_EQ(ntoshost::controlDevice(bottom, control), STATUS_SUCCESS);
    EXPECT_EQ(control.information, 4u);
  }
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

// Sends a synchronous request as a driver does and returns the status of its dispatch.
NTSTATUS sendSynchronous(DEVICE_OBJECT* device, KEVENT& event, IO_STATUS_BLOCK& result) {
  KeInitializeEvent(&event, NotificationEvent, 0);
  result = {{0x1234}, 0};
  IRP* const request =
      IoBuildSynchronousFsdRequest(IRP_MJ_PNP, device, nullptr, 0, nullptr, &event, &result);
  request->IoStatus.Status = STATUS_NOT_SUPPORTED;
  IoGetNextIrpStackLocation(request)->MinorFunction = IRP_MN_QUERY_CAPABILITIES;
  return IoCallDriver(device, request);
}

TEST_F(Requests, ASynchronousRequestSetsItsEvent) {
  DEVICE_OBJECT* const device =
      makeDevice([](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_SUCCESS, 9); });
  KEVENT event;
  IO_STATUS_BLOCK result;
  EXPECT_EQ(sendSynchronous(device, event, result), STATUS_SUCCESS);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(result.Status, STATUS_SUCCESS);
  EXPECT_EQ(result.Information, 9u);
  IoDeleteDevice(device);
}

TEST_F(Requests, AnErrorAtOnceIsToldByTheCallAlone) {
  DEVICE_OBJECT* const device = makeDevice(
      [](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_NO_SUCH_FILE); });
  KEVENT event;
  IO_STATUS_BLOCK result;
  EXPECT_EQ(sendSynchronous(device, event, result), STATUS_NO_SUCH_FILE);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
  EXPECT_EQ(result.Status, 0x1234);
  IoDeleteDevice(device);
}

TEST_F(Requests, APendedErrorSetsTheEvent) {
  DEVICE_OBJECT* const device = makeDevice(keep());
  KEVENT event;
  IO_STATUS_BLOCK result;
  EXPECT_EQ(sendSynchronous(device, event, result), STATUS_PENDING);
  EXPECT_EQ(look(&event), STATUS_TIMEOUT);
  complete(m_kept, STATUS_NO_SUCH_FILE);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(result.Status, STATUS_NO_SUCH_FILE);
  IoDeleteDevice(device);
}

TEST_F(Requests, AControlIsBuiltForADriver) {
  DEVICE_OBJECT* const device = makeDevice([](DEVICE_OBJECT*, IRP* request) {
    IO_STACK_LOCATION const& location = *IoGetCurrentIrpStackLocation(request);
    EXPECT_EQ(location.MajorFunction, IRP_MJ_INTERNAL_DEVICE_CONTROL);
    *static_cast<u32*>(request->AssociatedIrp.SystemBuffer) += 1;
    return complete(request, STATUS_SUCCESS, 4);
  });
  KEVENT event;
  KeInitializeEvent(&event, NotificationEvent, 0);
  IO_STATUS_BLOCK result;
  u32 number = 41;
  IRP* const request = IoBuildDeviceIoControlRequest(kBufferedCode, device, &number, 4, &number, 4,
                                                     1, &event, &result);
  EXPECT_EQ(IoCallDriver(device, request), STATUS_SUCCESS);
  EXPECT_EQ(look(&event), STATUS_SUCCESS);
  EXPECT_EQ(number, 42u);
  IoDeleteDevice(device);
}

TEST_F(Requests, MakingOneIsAFallibleCall) {
  DEVICE_OBJECT* const device = makeDevice();
  KEVENT event;
  IO_STATUS_BLOCK result;
  ntoshost::failFrom(ntoshost::kFaultRequest, 1);
  EXPECT_EQ(IoAllocateIrp(1, 0), nullptr);
  EXPECT_EQ(IoBuildSynchronousFsdRequest(IRP_MJ_PNP, device, nullptr, 0, nullptr, &event, &result),
            nullptr);
  EXPECT_EQ(
      IoBuildDeviceIoControlRequest(kCode, device, nullptr, 0, nullptr, 0, 0, &event, &result),
      nullptr);
  EXPECT_EQ(send(device), STATUS_INSUFFICIENT_RESOURCES);
  EXPECT_EQ(ntoshost::faultsInjected(), 4u);
  ntoshost::clearFaults();
  IoDeleteDevice(device);
}

TEST_F(Requests, ManyThreadsSendAtOnce) {
  u64 served = 0;
  DEVICE_OBJECT* const bottom = makeDevice([&](DEVICE_OBJECT*, IRP* request) {
    __atomic_add_fetch(&served, 1, __ATOMIC_RELAXED);
    return complete(request, STATUS_SUCCESS);
  });
  DEVICE_OBJECT* const filter = makeFilter(bottom);
  constexpr u64 kThreads = 4;
  constexpr u64 kRounds = 500;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (u64 i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (u64 round = 0; round < kRounds; ++round) EXPECT_EQ(send(bottom), STATUS_SUCCESS);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(served, kThreads * kRounds);
  takeOff(filter, bottom);
  IoDeleteDevice(bottom);
}

}  // namespace
