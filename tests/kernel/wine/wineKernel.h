#pragma once

// What the drivers of the tests call of Wine's kernel beside what the product calls.

#include "ntos/driver.h"
#include "ntos/registry.h"

constexpr ACCESS_MASK kKeyAllAccess = 0xF003F;
constexpr u32 kKeyIsVolatile = 1;  // gone when the server of the prefix ends

constexpr u32 kPageReadWrite = 0x04;
inline HANDLE const kOwnProcess = reinterpret_cast<HANDLE>(-1);

extern "C" {

// Wine's own: looks at the registry for devices without a bus that the driver of a service is for.
// It adds and starts the new ones and removes those that are not there any more, at once.
NTOS_IMPORT void wine_enumerate_root_devices(wchar_t const* service);

NTOS_IMPORT NTSTATUS ZwCreateKey(HANDLE* key, ACCESS_MASK access,
                                 OBJECT_ATTRIBUTES const* attributes, u32 titleIndex,
                                 UNICODE_STRING const* keyClass, u32 options, u32* disposition);
NTOS_IMPORT NTSTATUS ZwSetValueKey(HANDLE key, UNICODE_STRING const* name, u32 titleIndex, u32 type,
                                   void const* data, u32 size);
NTOS_IMPORT NTSTATUS ZwDeleteValueKey(HANDLE key, UNICODE_STRING const* name);

// Finds a kernel object such as \Driver\slotbus; the caller gives the reference back.
NTOS_IMPORT NTSTATUS ObReferenceObjectByName(UNICODE_STRING* name, u32 attributes,
                                             void* accessState, ACCESS_MASK access, void* type,
                                             KPROCESSOR_MODE mode, void* parseContext,
                                             void** object);
extern NTOS_IMPORT void** IoDriverObjectType;

// Waits; below 0 it is a span in units of 100 ns.
NTOS_IMPORT NTSTATUS KeDelayExecutionThread(KPROCESSOR_MODE mode, BOOLEAN alertable,
                                            LARGE_INTEGER* time);

// Changes what may be done with pages; `process` of kOwnProcess is the caller's.
NTOS_IMPORT NTSTATUS ZwProtectVirtualMemory(HANDLE process, void** address, size_t* size,
                                            u32 protection, u32* before);

// Copies parts of an object's security, as one relative descriptor.
NTOS_IMPORT NTSTATUS ZwQuerySecurityObject(HANDLE object, u32 information, void* descriptor,
                                           u32 size, u32* needed);

// Gives back a block whatever its tag: what the kernel does with answers to its requests.
NTOS_IMPORT void ExFreePool(void* block);
}
