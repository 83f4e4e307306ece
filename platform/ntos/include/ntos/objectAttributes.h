#pragma once

#include "ntos/types.h"

// How an object is named when it is opened or created.
struct OBJECT_ATTRIBUTES {
  u32 Length;            // sizeof(OBJECT_ATTRIBUTES)
  HANDLE RootDirectory;  // null: ObjectName is a full path
  UNICODE_STRING* ObjectName;
  u32 Attributes;  // OBJ_ values
  void* SecurityDescriptor;
  void* SecurityQualityOfService;
};
static_assert(sizeof(OBJECT_ATTRIBUTES) == 48);
static_assert(offsetof(OBJECT_ATTRIBUTES, RootDirectory) == 8);
static_assert(offsetof(OBJECT_ATTRIBUTES, ObjectName) == 16);
static_assert(offsetof(OBJECT_ATTRIBUTES, Attributes) == 24);
static_assert(offsetof(OBJECT_ATTRIBUTES, SecurityDescriptor) == 32);
static_assert(offsetof(OBJECT_ATTRIBUTES, SecurityQualityOfService) == 40);

// OBJECT_ATTRIBUTES::Attributes
constexpr u32 OBJ_CASE_INSENSITIVE = 0x40;
constexpr u32 OBJ_KERNEL_HANDLE = 0x200;  // valid in every process, and for the kernel only

// Fills `attributes` for a full path. `name` must live as long as `attributes`.
inline void InitializeObjectAttributes(OBJECT_ATTRIBUTES* attributes, UNICODE_STRING* name,
                                       u32 flags, HANDLE root, void* security) {
  attributes->Length = sizeof(OBJECT_ATTRIBUTES);
  attributes->RootDirectory = root;
  attributes->ObjectName = name;
  attributes->Attributes = flags;
  attributes->SecurityDescriptor = security;
  attributes->SecurityQualityOfService = nullptr;
}

extern "C" {

// Closes a handle of any kind. PASSIVE_LEVEL.
NTOS_IMPORT NTSTATUS ZwClose(HANDLE handle);
}
