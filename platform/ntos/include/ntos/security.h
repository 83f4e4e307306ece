#pragma once

#include "ntos/objectAttributes.h"

// Who may open an object.

struct OBJECT_TYPE;

constexpr ACCESS_MASK WRITE_DAC = 0x40000;
constexpr ACCESS_MASK GENERIC_ALL = 0x10000000;
constexpr u32 DACL_SECURITY_INFORMATION = 0x4;

constexpr u8 SECURITY_DESCRIPTOR_REVISION = 1;
constexpr u16 SE_DACL_PRESENT = 0x4;
constexpr u16 SE_DACL_PROTECTED = 0x1000;  // nothing is inherited from the directory
constexpr u16 SE_SELF_RELATIVE = 0x8000;   // the parts follow, at offsets

// What the list of those who may, and what else there is, begin with.
struct SECURITY_DESCRIPTOR_RELATIVE {
  u8 Revision;
  u8 Sbz1;
  u16 Control;  // SE_
  u32 Owner;    // offsets from here; 0 for none
  u32 Group;
  u32 Sacl;
  u32 Dacl;
};
static_assert(sizeof(SECURITY_DESCRIPTOR_RELATIVE) == 20);

constexpr u8 ACL_REVISION = 2;

struct ACL {
  u8 AclRevision;
  u8 Sbz1;
  u16 AclSize;  // bytes, with the entries behind it
  u16 AceCount;
  u16 Sbz2;
};
static_assert(sizeof(ACL) == 8);

constexpr u8 ACCESS_ALLOWED_ACE_TYPE = 0;

struct ACE_HEADER {
  u8 AceType;
  u8 AceFlags;
  u16 AceSize;  // bytes, with the identifier
};
static_assert(sizeof(ACE_HEADER) == 4);

extern "C" {

// A handle to an object that one has the address of. `state` and `type` may be null.
// PASSIVE_LEVEL; closed with ZwClose.
NTOS_IMPORT NTSTATUS ObOpenObjectByPointer(void* object, u32 attributes, void* state,
                                           ACCESS_MASK access, OBJECT_TYPE* type,
                                           KPROCESSOR_MODE mode, HANDLE* handle);

// Replaces the parts of the object's security that `parts` names. PASSIVE_LEVEL.
NTOS_IMPORT NTSTATUS ZwSetSecurityObject(HANDLE handle, u32 parts, void const* descriptor);
}
