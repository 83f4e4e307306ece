#pragma once

#include "ntos/objectAttributes.h"
#include "ntos/status.h"

// Reading the registry. All calls run at PASSIVE_LEVEL.

constexpr ACCESS_MASK KEY_QUERY_VALUE = 0x1;
constexpr ACCESS_MASK KEY_READ = 0x20019;

// KEY_VALUE_PARTIAL_INFORMATION::Type
constexpr u32 REG_SZ = 1;         // UTF-16 text, usually terminated
constexpr u32 REG_EXPAND_SZ = 2;  // the same with %names% in it
constexpr u32 REG_BINARY = 3;
constexpr u32 REG_DWORD = 4;     // a u32
constexpr u32 REG_MULTI_SZ = 7;  // texts one behind the other, an empty one ends them

// What ZwQueryValueKey is asked for
enum KEY_VALUE_INFORMATION_CLASS : i32 { KeyValuePartialInformation = 2 };

// A value without its name. The data follows; ask with a buffer that has room for it.
struct KEY_VALUE_PARTIAL_INFORMATION {
  u32 TitleIndex;
  u32 Type;
  u32 DataLength;  // bytes
  u8 Data[1];
};
static_assert(sizeof(KEY_VALUE_PARTIAL_INFORMATION) == 16);
static_assert(offsetof(KEY_VALUE_PARTIAL_INFORMATION, Type) == 4);
static_assert(offsetof(KEY_VALUE_PARTIAL_INFORMATION, DataLength) == 8);
static_assert(offsetof(KEY_VALUE_PARTIAL_INFORMATION, Data) == 12);

extern "C" {

// Opens a key by its kernel path, such as the registry path that a driver is given. The caller
// owns *key and closes it with ZwClose.
NTOS_IMPORT NTSTATUS ZwOpenKey(HANDLE* key, ACCESS_MASK access,
                               OBJECT_ATTRIBUTES const* attributes);

// Reads the value `name` into `information` of `length` bytes. `needed` gets the length that the
// answer has; STATUS_BUFFER_OVERFLOW (cut) or STATUS_BUFFER_TOO_SMALL (not even the head) when
// that is more.
NTOS_IMPORT NTSTATUS ZwQueryValueKey(HANDLE key, UNICODE_STRING const* name,
                                     KEY_VALUE_INFORMATION_CLASS kind, void* information,
                                     u32 length, u32* needed);
}
