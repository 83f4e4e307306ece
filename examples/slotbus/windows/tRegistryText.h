#pragma once

#include "ntos/registry.h"
#include "vexk/tMemBlockReferenceTemplate.h"

// A text value (REG_SZ) of a registry key, in paged memory of its own. IRQL: PASSIVE_LEVEL.
class tRegistryText {
 public:
  static constexpr u32 kMaxLength = 1000;  // characters

  // Reads the value `name` of an open key. Returns 0, or the kernel's reason with an empty text:
  // STATUS_OBJECT_NAME_NOT_FOUND when there is no such value, STATUS_OBJECT_TYPE_MISMATCH when it
  // is no text, STATUS_BUFFER_OVERFLOW when it is too long, STATUS_INSUFFICIENT_RESOURCES when
  // memory is exhausted.
  NTSTATUS read(HANDLE key, wchar_t const* name);

  // Always terminated; empty before read(). Belongs to this object.
  wchar_t const* get() const { return length == 0 ? L"" : getCharacters(); }

 private:
  static constexpr u32 kMaxDataLength = kMaxLength * sizeof(wchar_t);
  static constexpr u32 kHeadLength = offsetof(KEY_VALUE_PARTIAL_INFORMATION, Data);

  KEY_VALUE_PARTIAL_INFORMATION* getValue() const {
    return reinterpret_cast<KEY_VALUE_PARTIAL_INFORMATION*>(block.get());
  }
  wchar_t* getCharacters() const { return reinterpret_cast<wchar_t*>(block.get() + kHeadLength); }

  tMemBlockReferenceTemplate<u8> block;
  u32 length = 0;  // characters
};
