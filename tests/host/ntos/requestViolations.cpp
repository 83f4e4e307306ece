// What the executive does not put up with in requests.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "ntos/sync.h"
#include "ntos/thread.h"
#include "testDriver.h"

namespace {

// The calling thread's level stays raised: only for what dies.
void raise(KIRQL level) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
}

NTSTATUS stop(DEVICE_OBJECT*, IRP*, void*) {
  return STATUS_MORE_PROCESSING_REQUIRED;
}

class RequestViolationsDeathTest : public DriverTest {
 protected:
  RequestViolationsDeathTest() { m_device = makeDevice(); }
  ~RequestViolationsDeathTest() override { IoDeleteDevice(m_device); }

  void serve(Dispatch dispatch) { setDispatch(m_device, std::move(dispatch)); }

  // A device control of the test's own, that a completion routine stops.
  IRP* allocate(i8 locations = 1) const {
    IRP* const request = IoAllocateIrp(locations, 0);
    IoGetNextIrpStackLocation(request)->MajorFunction = IRP_MJ_DEVICE_CONTROL;
    IoSetCompletionRoutine(request, stop, nullptr, true, true, true);
    return request;
  }

  ntoshost::Request pnp(u8 minor) const { return {.major = IRP_MJ_PNP, .minor = minor}; }

  DEVICE_OBJECT* m_device;
};

TEST_F(RequestViolationsDeathTest, ACompletedRequestIsNotCompletedAgain) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    complete(request, STATUS_SUCCESS);
    IoCompleteRequest(request, IO_NO_INCREMENT);
    return STATUS_SUCCESS;
  });
  EXPECT_DEATH(send(m_device),
               "ntos: IofCompleteRequest was given the request at 0x[0-9a-f]+, which was completed "
               "or freed before\\.\n$");
}

TEST_F(RequestViolationsDeathTest, AStoppedRequestIsNotCompletedAgain) {
  IRP* const request = allocate();
  IoCallDriver(m_device, request);
  EXPECT_DEATH(complete(request, STATUS_SUCCESS),
               "IofCompleteRequest: the request at 0x[0-9a-f]+ was completed before, or never "
               "sent\\.");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, WhatIsNoRequestIsRefused) {
  IRP request = {};
  EXPECT_DEATH(IoCompleteRequest(&request, 0), "given something at 0x[0-9a-f]+ that is no request");
  EXPECT_DEATH(IoCallDriver(m_device, &request), "IofCallDriver was given .* that is no request");
  EXPECT_DEATH(IoFreeIrp(&request), "IoFreeIrp was given .* that is no request");
}

TEST_F(RequestViolationsDeathTest, NothingIsCompletedWithPending) {
  serve([](DEVICE_OBJECT*, IRP* request) { return complete(request, STATUS_PENDING); });
  EXPECT_DEATH(send(m_device),
               "IofCompleteRequest: the request at 0x[0-9a-f]+ was completed with STATUS_PENDING");
}

TEST_F(RequestViolationsDeathTest, NothingIsCompletedWithACancelRoutine) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    request->CancelRoutine = [](DEVICE_OBJECT*, IRP*) {};
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device), "was completed with a cancel routine\\.");
}

TEST_F(RequestViolationsDeathTest, TheDispatchReturnsTheStatusOfTheRequest) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    complete(request, STATUS_UNSUCCESSFUL);
    return STATUS_SUCCESS;
  });
  EXPECT_DEATH(send(m_device),
               "The driver .Driver.tester returned 0x00000000 for the device control request that "
               "was completed with 0xc0000001\\.");
}

TEST_F(RequestViolationsDeathTest, PendingIsMarked) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    complete(request, STATUS_SUCCESS);
    return STATUS_PENDING;
  });
  EXPECT_DEATH(send(m_device),
               "returned 0x00000103 for the device control request that it has completed without "
               "marking it pending\\.");
  IRP* kept = nullptr;
  serve([&](DEVICE_OBJECT*, IRP* request) {
    kept = request;
    return STATUS_PENDING;
  });
  IRP* const request = allocate();
  IoCallDriver(m_device, request);
  EXPECT_DEATH(complete(kept, STATUS_SUCCESS),
               "a dispatch returned STATUS_PENDING for the device control request at 0x[0-9a-f]+ "
               "that it has not marked pending\\.");
  IoMarkIrpPending(kept);
  complete(kept, STATUS_SUCCESS);
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, WhatIsMarkedIsReturnedAsPending) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    IoMarkIrpPending(request);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device), "returned 0x00000000 .* that it has marked pending\\.");
}

TEST_F(RequestViolationsDeathTest, ARequestIsServedByItsDispatch) {
  serve([](DEVICE_OBJECT*, IRP*) { return STATUS_SUCCESS; });
  EXPECT_DEATH(send(m_device),
               "The driver .Driver.tester returned 0x00000000 for the device control request that "
               "it has neither completed nor passed on\\.");
}

TEST_F(RequestViolationsDeathTest, SomebodyCompletesIt) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    IoMarkIrpPending(request);
    return STATUS_PENDING;
  });
  EXPECT_DEATH((ntoshost::setRequestPatience(20), send(m_device)),
               "Nobody has completed the device control request to the device at 0x[0-9a-f]+ "
               "within 20 milliseconds\\.");
  ntoshost::Request request = pnp(IRP_MN_QUERY_ID);
  EXPECT_DEATH((ntoshost::setRequestPatience(20), ntoshost::sendRequest(m_device, request)),
               "completed the plug-and-play request 0x13 to");
}

TEST_F(RequestViolationsDeathTest, TheStackLocationsEnd) {
  serve([this](DEVICE_OBJECT*, IRP* request) { return IoCallDriver(m_device, request); });
  EXPECT_DEATH(send(m_device),
               "IofCallDriver: the request at 0x[0-9a-f]+ has no stack location left for the "
               "device at 0x[0-9a-f]+\\.");
}

TEST_F(RequestViolationsDeathTest, ALocationTooManyIsNotWrittenTo) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    IoCopyCurrentIrpStackLocationToNext(request);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device),
               "IofCompleteRequest: a driver has used a stack location that the request at "
               "0x[0-9a-f]+ does not have\\.");
}

TEST_F(RequestViolationsDeathTest, TheHighestLocationIsTheHighest) {
  IRP* const request = allocate();
  EXPECT_DEATH((IoSkipCurrentIrpStackLocation(request), IoCallDriver(m_device, request)),
               "was moved above its highest stack location\\.");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, ARequestThatIsSentIsNotFreed) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    IoFreeIrp(request);
    return STATUS_SUCCESS;
  });
  EXPECT_DEATH(send(m_device), "IoFreeIrp: the request at 0x[0-9a-f]+ is still with a driver\\.");
}

TEST_F(RequestViolationsDeathTest, AFreedRequestIsNotFreedAgain) {
  IRP* const request = allocate();
  IoFreeIrp(request);
  EXPECT_DEATH(IoFreeIrp(request), "IoFreeIrp was given the request .* completed or freed before");
}

TEST_F(RequestViolationsDeathTest, ARequestIsNoBlockOfTheCallers) {
  IRP* const request = allocate();
  EXPECT_DEATH(ExFreePoolWithTag(request, ntosPoolTag("Irp ")),
               "ExFreePoolWithTag was given 0x[0-9a-f]+, an object of the executive that has its "
               "own way to go\\.");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, TheMakerStopsHisRequest) {
  IRP* const request = allocate();
  IoGetNextIrpStackLocation(request)->CompletionRoutine = nullptr;
  EXPECT_DEATH(IoCallDriver(m_device, request),
               "the request at 0x[0-9a-f]+ came back to its maker, who has not stopped it\\.");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, PnpRequestsStartAsNotSupported) {
  ntoshost::Request request = pnp(IRP_MN_START_DEVICE);
  request.result.Status = STATUS_SUCCESS;
  EXPECT_DEATH(ntoshost::sendRequest(m_device, request),
               "starts with status 0x00000000; it has to be STATUS_NOT_SUPPORTED\\.");
}

TEST_F(RequestViolationsDeathTest, TheMajorCodeExists) {
  ntoshost::Request request = {.major = 0x1C};
  EXPECT_DEATH(ntoshost::sendRequest(m_device, request),
               "has the major code 0x1c; 0x1b is the highest\\.");
  m_driver->MajorFunction[IRP_MJ_CREATE] = nullptr;
  request.major = IRP_MJ_CREATE;
  EXPECT_DEATH(ntoshost::sendRequest(m_device, request),
               "the driver .Driver.tester has no dispatch for the create request\\.");
}

TEST_F(RequestViolationsDeathTest, PnpRequestsAreForPassiveLevel) {
  ntoshost::Request request = pnp(IRP_MN_START_DEVICE);
  EXPECT_DEATH((raise(APC_LEVEL), ntoshost::sendRequest(m_device, request)),
               "IofCallDriver with such a request was called at IRQL 1");
}

TEST_F(RequestViolationsDeathTest, NobodyIsGivenPagedMemoryAtDispatchLevel) {
  void* const paged = ExAllocatePoolWithTag(PagedPool, 4, ntosPoolTag("test"));
  ntoshost::DeviceControl control = {.code = kCode, .output = paged, .outputLength = 4};
  EXPECT_DEATH((raise(DISPATCH_LEVEL), ntoshost::controlDevice(m_device, control)),
               "IofCallDriver was called at IRQL 2 with a buffer at 0x[0-9a-f]+ in PagedPool\\.");
  control = {.code = kCode, .input = paged, .inputLength = 4};
  EXPECT_DEATH((raise(DISPATCH_LEVEL), ntoshost::controlDevice(m_device, control)),
               "with a buffer at 0x[0-9a-f]+ in PagedPool\\.");
  EXPECT_EQ(ntoshost::controlDevice(m_device, control), STATUS_SUCCESS);
  ExFreePoolWithTag(paged, ntosPoolTag("test"));
}

TEST_F(RequestViolationsDeathTest, NothingIsDoneAboveDispatchLevel) {
  IRP* const request = allocate();
  EXPECT_DEATH((raise(3), IoCallDriver(m_device, request)), "IofCallDriver was called at IRQL 3");
  EXPECT_DEATH((raise(3), IoCompleteRequest(request, 0)),
               "IofCompleteRequest was called at IRQL 3");
  EXPECT_DEATH((raise(3), IoFreeIrp(request)), "IoFreeIrp was called at IRQL 3");
  EXPECT_DEATH((raise(3), IoAllocateIrp(1, 0)), "IoAllocateIrp was called at IRQL 3");
  EXPECT_DEATH((raise(3), PoCallDriver(m_device, request)), "PoCallDriver was called at IRQL 3");
  EXPECT_DEATH((raise(3), PoStartNextPowerIrp(request)),
               "PoStartNextPowerIrp was called at IRQL 3");
  EXPECT_DEATH((raise(3), PoSetPowerState(m_device, SystemPowerState, {})),
               "PoSetPowerState was called at IRQL 3");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, RequestsForAWaitAreBuiltAtPassiveLevel) {
  EXPECT_DEATH((raise(APC_LEVEL), IoBuildSynchronousFsdRequest(IRP_MJ_PNP, m_device, nullptr, 0,
                                                               nullptr, nullptr, nullptr)),
               "IoBuildSynchronousFsdRequest was called at IRQL 1");
  EXPECT_DEATH((raise(APC_LEVEL), IoBuildDeviceIoControlRequest(kCode, m_device, nullptr, 0,
                                                                nullptr, 0, 0, nullptr, nullptr)),
               "IoBuildDeviceIoControlRequest was called at IRQL 1");
}

TEST_F(RequestViolationsDeathTest, WhatIsNotDoneIsSaid) {
  char buffer[4];
  EXPECT_DEATH(
      IoBuildSynchronousFsdRequest(IRP_MJ_PNP, m_device, buffer, 4, nullptr, nullptr, nullptr),
      "reading and writing devices is not done\\.");
  EXPECT_DEATH(IoBuildDeviceIoControlRequest(kCode - 1, m_device, nullptr, 0, nullptr, 0, 0,
                                             nullptr, nullptr),
               "The device control 0x80002002 has a direct method; this is not done\\.");
  EXPECT_DEATH(IoAllocateIrp(0, 0), "asked for a request with 0 stack locations");
  EXPECT_DEATH(IoAllocateIrp(101, 0), "with 101 stack locations; it may have 1 to 100\\.");
}

TEST_F(RequestViolationsDeathTest, NobodyCallsADriverWithAFastMutex) {
  FAST_MUTEX mutex;
  ExInitializeFastMutex(&mutex);
  ExAcquireFastMutex(&mutex);
  EXPECT_DEATH(send(m_device),
               "IofCallDriver was called by a thread that owns the fast mutex at 0x[0-9a-f]+\\.");
  ExReleaseFastMutex(&mutex);
}

TEST_F(RequestViolationsDeathTest, ADispatchReturnsAtTheLevelItWasCalledAt) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    raise(DISPATCH_LEVEL);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device),
               "returned from the device control request at IRQL 2; it was called "
               "at IRQL 0\\.");
}

TEST_F(RequestViolationsDeathTest, ADispatchReturnsWithoutAMutexThatItHasTaken) {
  KMUTEX mutex;
  KeInitializeMutex(&mutex, 0);
  serve([&](DEVICE_OBJECT*, IRP* request) {
    KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, nullptr);
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device),
               "ntos: The driver \\\\Driver\\\\tester returned from the device control request and "
               "owns the mutex at 0x[0-9a-f]+, taken meanwhile\\.\n$");
  KeWaitForSingleObject(&mutex, Executive, KernelMode, 0, nullptr);
  EXPECT_EQ(send(m_device), STATUS_SUCCESS);  // once more what the sender had
  KeReleaseMutex(&mutex, 0);
  EXPECT_EQ(KeReleaseMutex(&mutex, 0), 0);
}

TEST_F(RequestViolationsDeathTest, ADispatchReturnsInTheRegionsItWasCalledIn) {
  serve([](DEVICE_OBJECT*, IRP* request) {
    KeEnterCriticalRegion();
    return complete(request, STATUS_SUCCESS);
  });
  EXPECT_DEATH(
      send(m_device),
      "ntos: The driver \\\\Driver\\\\tester returned from the device control request in 1 "
      "critical regions; it was called in 0\\.\n$");
  serve([](DEVICE_OBJECT*, IRP* request) {
    KeLeaveCriticalRegion();
    return complete(request, STATUS_SUCCESS);
  });
  KeEnterCriticalRegion();
  EXPECT_DEATH(send(m_device), "in 0 critical regions; it was called in 1\\.\n$");
  KeLeaveCriticalRegion();
}

TEST_F(RequestViolationsDeathTest, ACompletionRoutineReturnsAtTheLevelItWasCalledAt) {
  IRP* const request = allocate();
  auto const routine = [](DEVICE_OBJECT*, IRP*, void*) {
    raise(DISPATCH_LEVEL);
    return STATUS_MORE_PROCESSING_REQUIRED;
  };
  IoSetCompletionRoutine(request, routine, nullptr, true, true, true);
  EXPECT_DEATH(IoCallDriver(m_device, request),
               "A completion routine returned at IRQL 2; it was called at IRQL 0\\.");
  IoFreeIrp(request);
}

TEST_F(RequestViolationsDeathTest, PowerCallsAreForPowerRequests) {
  IRP* const request = allocate();
  EXPECT_DEATH(PoCallDriver(m_device, request),
               "PoCallDriver was given the request at 0x[0-9a-f]+, which is no power request\\.");
  IoFreeIrp(request);
  serve([](DEVICE_OBJECT*, IRP* sent) {
    PoStartNextPowerIrp(sent);
    return complete(sent, STATUS_SUCCESS);
  });
  EXPECT_DEATH(send(m_device), "PoStartNextPowerIrp was given .* which is no power request\\.");
}

TEST_F(RequestViolationsDeathTest, WhatIsLeftIsCounted) {
  IRP* const request = allocate();
  EXPECT_DEATH(ntoshost::requireNoDevices("The test"),
               "ntos: driver .Driver.tester at 0x[0-9a-f]+\n"
               "ntos: device of .Driver.tester at 0x[0-9a-f]+: 0 references, 0 handles\n"
               "ntos: request at 0x[0-9a-f]+, never sent\n"
               "ntos: The test left 1 devices, 1 requests, 0 open files, 0 symbolic links and 1 "
               "drivers behind\\.\n$");
  IoFreeIrp(request);
}

}  // namespace
