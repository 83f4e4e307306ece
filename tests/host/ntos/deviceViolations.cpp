// What the executive does not put up with in devices, drivers and remove locks.

#include <gtest/gtest.h>

#include "ntos/irql.h"
#include "ntos/removeLock.h"
#include "ntos/sync.h"
#include "testDriver.h"

namespace {

// The calling thread's level stays raised: only for what dies.
void raise(KIRQL level) {
  KIRQL previous;
  KeRaiseIrql(level, &previous);
}

class DeviceViolationsDeathTest : public DriverTest {
 protected:
  DeviceViolationsDeathTest() { m_device = makeDevice(completeWithSuccess, 200); }
  ~DeviceViolationsDeathTest() override { IoDeleteDevice(m_device); }

  template <class T>
  T& extension() {
    return *static_cast<T*>(m_device->DeviceExtension);
  }

  DEVICE_OBJECT* m_device;
};

TEST_F(DeviceViolationsDeathTest, ADeviceIsDeletedOnce) {
  DEVICE_OBJECT* const device = makeDevice();
  ObfReferenceObject(device);
  IoDeleteDevice(device);
  EXPECT_DEATH(IoDeleteDevice(device),
               "ntos: IoDeleteDevice: the device at 0x[0-9a-f]+ was deleted before\\.\n$");
  ObfDereferenceObject(device);
  EXPECT_DEATH(IoDeleteDevice(device),
               "IoDeleteDevice was given the device at 0x[0-9a-f]+, which is gone\\.");
}

TEST_F(DeviceViolationsDeathTest, WhatIsNoDeviceIsRefused) {
  DEVICE_OBJECT device = {};
  EXPECT_DEATH(IoDeleteDevice(&device), "given something at 0x[0-9a-f]+ that is no device\\.");
  EXPECT_DEATH(ObfReferenceObject(&device), "ObfReferenceObject was given .* no device");
  EXPECT_DEATH(IoGetAttachedDeviceReference(&device), "given .* no device");
  EXPECT_DEATH(IoDetachDevice(&device), "IoDetachDevice was given .* no device");
  EXPECT_DEATH(PoSetPowerState(&device, SystemPowerState, {}), "PoSetPowerState was given");
}

TEST_F(DeviceViolationsDeathTest, AStackIsTakenApartBeforeItsDevicesGo) {
  DEVICE_OBJECT* const top = makeFilter(m_device);
  EXPECT_DEATH(IoDeleteDevice(m_device),
               "the device at 0x[0-9a-f]+ has the device at 0x[0-9a-f]+ attached above it\\.");
  EXPECT_DEATH(IoDeleteDevice(top),
               "the device at 0x[0-9a-f]+ is still attached to the one at 0x[0-9a-f]+\\.");
  EXPECT_DEATH(IoAttachDeviceToDeviceStack(top, m_device),
               "IoAttachDeviceToDeviceStack: the device at 0x[0-9a-f]+ is in a stack already\\.");
  takeOff(top, m_device);
  EXPECT_DEATH(IoDetachDevice(m_device), "nothing is attached to the device at 0x");
}

TEST_F(DeviceViolationsDeathTest, AnOpenDeviceIsNotDeleted) {
  FILE_OBJECT* file = nullptr;
  ASSERT_EQ(ntoshost::openDevice(m_device, &file), STATUS_SUCCESS);
  EXPECT_DEATH(IoDeleteDevice(m_device), "the device at 0x[0-9a-f]+ is open \\(1 handles\\)\\.");
  ntoshost::closeDevice(file);
  EXPECT_DEATH(ntoshost::closeDevice(file), "closeDevice was given .* that is no open file\\.");
}

TEST_F(DeviceViolationsDeathTest, OnlyWhatWasReferredToIsGivenBack) {
  EXPECT_DEATH(ObfDereferenceObject(m_device),
               "ObfDereferenceObject: there is no reference on the device at 0x[0-9a-f]+ to give "
               "back\\.");
}

TEST_F(DeviceViolationsDeathTest, TheExtensionIsGuarded) {
  auto* const bytes = static_cast<u8 volatile*>(m_device->DeviceExtension);
  EXPECT_DEATH((bytes[200] = 1, ntoshost::verifyPool()), "AddressSanitizer|was overrun");
}

TEST_F(DeviceViolationsDeathTest, CallsStateTheirLevel) {
  DEVICE_OBJECT* device = nullptr;
  UNICODE_STRING name = {};
  EXPECT_DEATH((raise(1), IoCreateDevice(m_driver, 0, nullptr, 0, 0, 0, &device)),
               "IoCreateDevice was called at IRQL 1");
  EXPECT_DEATH((raise(1), IoDeleteDevice(m_device)), "IoDeleteDevice was called at IRQL 1");
  EXPECT_DEATH((raise(1), IoAttachDeviceToDeviceStack(m_device, m_device)),
               "IoAttachDeviceToDeviceStack was called at IRQL 1");
  EXPECT_DEATH((raise(1), IoDetachDevice(m_device)), "IoDetachDevice was called at IRQL 1");
  EXPECT_DEATH((raise(3), IoGetAttachedDeviceReference(m_device)),
               "IoGetAttachedDeviceReference was called at IRQL 3");
  EXPECT_DEATH((raise(3), ObfReferenceObject(m_device)), "ObfReferenceObject was called at IRQL 3");
  EXPECT_DEATH((raise(3), ObfDereferenceObject(m_device)),
               "ObfDereferenceObject was called at IRQL 3");
  EXPECT_DEATH((raise(1), IoCreateSymbolicLink(&name, &name)),
               "IoCreateSymbolicLink was called at IRQL 1");
  EXPECT_DEATH((raise(1), IoDeleteSymbolicLink(&name)),
               "IoDeleteSymbolicLink was called at IRQL 1");
}

TEST_F(DeviceViolationsDeathTest, ADeviceHasADriverAndABoundedExtension) {
  DEVICE_OBJECT* device = nullptr;
  DRIVER_OBJECT driver = {};
  EXPECT_DEATH(IoCreateDevice(&driver, 0, nullptr, 0, 0, 0, &device),
               "IoCreateDevice was given something at 0x[0-9a-f]+ that is no driver\\.");
  EXPECT_DEATH(IoCreateDevice(m_driver, 0x10000, nullptr, 0, 0, 0, &device),
               "asked for an extension of 65536 bytes; 65199 is the most\\.");
  EXPECT_DEATH(ntoshost::unloadDriver(&driver), "unloadDriver was given .* no driver\\.");
}

TEST_F(DeviceViolationsDeathTest, AnUnloadedDriverLeavesNoDevice) {
  EXPECT_DEATH(ntoshost::unloadDriver(m_driver),
               "The driver .Driver.tester has left the device at 0x[0-9a-f]+ behind after its "
               "DriverUnload\\.");
}

DEVICE_OBJECT* g_left = nullptr;

TEST_F(DeviceViolationsDeathTest, AFailedDriverEntryLeavesNoDevice) {
  auto const entry = [](DRIVER_OBJECT* driver, UNICODE_STRING*) {
    IoCreateDevice(driver, 0, nullptr, 0, 0, 0, &g_left);
    return STATUS_UNSUCCESSFUL;
  };
  DRIVER_OBJECT* driver = nullptr;
  EXPECT_DEATH(ntoshost::loadDriver("leaver", entry, &driver),
               "behind after its failed DriverEntry\\.");
  EXPECT_DEATH(ntoshost::loadDriver("", entry, &driver),
               "A driver was given a name of 0 characters; it may have 1 to 63\\.");
}

TEST_F(DeviceViolationsDeathTest, AnExtensionGoesWithoutOwnedLocks) {
  struct Extension {
    IO_REMOVE_LOCK removeLock;
    KMUTEX mutex;
  };
  Extension& own = extension<Extension>();
  IoInitializeRemoveLock(&own.removeLock, 0);
  KeInitializeMutex(&own.mutex, 0);
  ASSERT_EQ(IoAcquireRemoveLock(&own.removeLock, this), STATUS_SUCCESS);
  EXPECT_DEATH(IoDeleteDevice(m_device),
               "The device at 0x[0-9a-f]+ goes while the remove lock at 0x[0-9a-f]+ in its "
               "extension is held\\.");
  IoReleaseRemoveLock(&own.removeLock, this);
  KeWaitForSingleObject(&own.mutex, Executive, KernelMode, 0, nullptr);
  EXPECT_DEATH(IoDeleteDevice(m_device),
               "The device at 0x[0-9a-f]+ goes while a thread owns the mutex at 0x[0-9a-f]+ in its "
               "extension\\.");
  KeReleaseMutex(&own.mutex, 0);
}

class RemoveLockViolationsDeathTest : public testing::Test {
 protected:
  RemoveLockViolationsDeathTest() { IoInitializeRemoveLock(&m_lock, 0); }

  void drain() {
    IoAcquireRemoveLock(&m_lock, this);
    IoReleaseRemoveLockAndWait(&m_lock, this);
  }

  IO_REMOVE_LOCK m_lock;
};

TEST_F(RemoveLockViolationsDeathTest, ItIsLeftByWhoEntered) {
  EXPECT_DEATH(IoReleaseRemoveLock(&m_lock, this),
               "ntos: IoReleaseRemoveLock: nobody has entered the remove lock at 0x[0-9a-f]+ with "
               "the tag 0x[0-9a-f]+\\.\n$");
  EXPECT_DEATH(IoReleaseRemoveLockAndWait(&m_lock, this),
               "IoReleaseRemoveLockAndWait: nobody has entered the remove lock");
  IoAcquireRemoveLock(&m_lock, this);
  EXPECT_DEATH(IoReleaseRemoveLock(&m_lock, &m_lock), "nobody has entered .* with the tag");
  IoReleaseRemoveLock(&m_lock, this);
}

TEST_F(RemoveLockViolationsDeathTest, ItIsDrainedOnce) {
  drain();
  EXPECT_DEATH(IoReleaseRemoveLockAndWait(&m_lock, this),
               "the remove lock at 0x[0-9a-f]+ was drained before\\.");
}

TEST_F(RemoveLockViolationsDeathTest, WhatWasNeverInitialisedIsRefused) {
  IO_REMOVE_LOCK lock = {};
  EXPECT_DEATH(IoAcquireRemoveLock(&lock, this),
               "IoAcquireRemoveLock was given something at 0x[0-9a-f]+ that is no initialised "
               "remove lock\\.");
  EXPECT_DEATH(IoReleaseRemoveLock(&lock, this), "no initialised remove lock");
  EXPECT_DEATH(IoReleaseRemoveLockAndWait(&lock, this), "no initialised remove lock");
  EXPECT_DEATH(IoInitializeRemoveLockEx(&lock, 0, 0, 0, 120),
               "IoInitializeRemoveLock was given a lock of 120 bytes; it has 32\\.");
  EXPECT_DEATH(IoAcquireRemoveLockEx(&m_lock, this, "", 1, 120), "no initialised remove lock");
}

TEST_F(RemoveLockViolationsDeathTest, CallsStateTheirLevel) {
  EXPECT_DEATH((raise(1), IoInitializeRemoveLock(&m_lock, 0)),
               "IoInitializeRemoveLock was called at IRQL 1");
  EXPECT_DEATH((raise(3), IoAcquireRemoveLock(&m_lock, this)),
               "IoAcquireRemoveLock was called at IRQL 3");
  EXPECT_DEATH((raise(3), IoReleaseRemoveLock(&m_lock, this)),
               "IoReleaseRemoveLock was called at IRQL 3");
  IoAcquireRemoveLock(&m_lock, this);
  EXPECT_DEATH((raise(1), IoReleaseRemoveLockAndWait(&m_lock, this)),
               "IoReleaseRemoveLockAndWait was called at IRQL 1");
  IoReleaseRemoveLock(&m_lock, this);
}

TEST_F(RemoveLockViolationsDeathTest, NobodyDrainsItWithAFastMutex) {
  FAST_MUTEX mutex;
  ExInitializeFastMutex(&mutex);
  ExAcquireFastMutex(&mutex);
  EXPECT_DEATH(drain(),
               "IoReleaseRemoveLockAndWait was called by a thread that owns the fast mutex at "
               "0x[0-9a-f]+\\.");
  ExReleaseFastMutex(&mutex);
}

}  // namespace
