#pragma once

#include "ntos/objectAttributes.h"
#include "ntos/status.h"

// Files. All calls run at PASSIVE_LEVEL. With FILE_SYNCHRONOUS_IO_NONALERT a call returns when the
// work is done, and its status is the work's.

// What became of a request.
struct IO_STATUS_BLOCK {
  union {
    NTSTATUS Status;
    void* Pointer;
  };
  u64 Information;  // bytes moved, or what ZwCreateFile did
};
static_assert(sizeof(IO_STATUS_BLOCK) == 16 && offsetof(IO_STATUS_BLOCK, Information) == 8);

// Desired access
constexpr ACCESS_MASK FILE_READ_DATA = 0x1;
constexpr ACCESS_MASK FILE_LIST_DIRECTORY = 0x1;  // of a directory: read its entries
constexpr ACCESS_MASK FILE_WRITE_DATA = 0x2;
constexpr ACCESS_MASK FILE_APPEND_DATA = 0x4;  // alone: every write goes to the end
constexpr ACCESS_MASK SYNCHRONIZE = 0x100000;
constexpr ACCESS_MASK GENERIC_WRITE = 0x40000000;
constexpr ACCESS_MASK GENERIC_READ = 0x80000000;

// File attributes
constexpr u32 FILE_ATTRIBUTE_NORMAL = 0x80;

// Share access
constexpr u32 FILE_SHARE_READ = 0x1;
constexpr u32 FILE_SHARE_WRITE = 0x2;
constexpr u32 FILE_SHARE_DELETE = 0x4;

// Disposition: what to do when the file exists, and when it does not
constexpr u32 FILE_SUPERSEDE = 0;     // replace; create
constexpr u32 FILE_OPEN = 1;          // open; fail
constexpr u32 FILE_CREATE = 2;        // fail; create
constexpr u32 FILE_OPEN_IF = 3;       // open; create
constexpr u32 FILE_OVERWRITE = 4;     // empty; fail
constexpr u32 FILE_OVERWRITE_IF = 5;  // empty; create

// Create options
constexpr u32 FILE_DIRECTORY_FILE = 0x1;
constexpr u32 FILE_WRITE_THROUGH = 0x2;             // a write returns when the data is on the disk
constexpr u32 FILE_SYNCHRONOUS_IO_NONALERT = 0x20;  // SYNCHRONIZE must be asked for as well
constexpr u32 FILE_NON_DIRECTORY_FILE = 0x40;
constexpr u32 FILE_OPEN_FOR_BACKUP_INTENT = 0x4000;

// What ZwQueryInformationFile is asked for
enum FILE_INFORMATION_CLASS : i32 { FileStandardInformation = 5 };

struct FILE_STANDARD_INFORMATION {
  LARGE_INTEGER AllocationSize;
  LARGE_INTEGER EndOfFile;  // bytes
  u32 NumberOfLinks;
  BOOLEAN DeletePending;
  BOOLEAN Directory;
};
static_assert(sizeof(FILE_STANDARD_INFORMATION) == 24);
static_assert(offsetof(FILE_STANDARD_INFORMATION, EndOfFile) == 8);
static_assert(offsetof(FILE_STANDARD_INFORMATION, NumberOfLinks) == 16);
static_assert(offsetof(FILE_STANDARD_INFORMATION, Directory) == 21);

extern "C" {

// Opens or creates the file that `attributes` names by a kernel path such as \??\C:\rack.txt, or
// relative to the directory that is open as their RootDirectory.
// `extended` and `extendedLength` are null and 0; `allocationSize` may be null. On success the
// caller owns *file and closes it with ZwClose.
NTOS_IMPORT NTSTATUS ZwCreateFile(HANDLE* file, ACCESS_MASK access,
                                  OBJECT_ATTRIBUTES const* attributes, IO_STATUS_BLOCK* result,
                                  LARGE_INTEGER* allocationSize, u32 fileAttributes,
                                  u32 shareAccess, u32 disposition, u32 options, void* extended,
                                  u32 extendedLength);

// Reads or writes `length` bytes at `offset`, or at the file's own position when it is null.
// `event`, `routine`, `context` and `key` are null. result->Information is the count of bytes;
// reading behind the end gives STATUS_END_OF_FILE.
NTOS_IMPORT NTSTATUS ZwReadFile(HANDLE file, HANDLE event, void* routine, void* context,
                                IO_STATUS_BLOCK* result, void* buffer, u32 length,
                                LARGE_INTEGER* offset, u32* key);
NTOS_IMPORT NTSTATUS ZwWriteFile(HANDLE file, HANDLE event, void* routine, void* context,
                                 IO_STATUS_BLOCK* result, void const* buffer, u32 length,
                                 LARGE_INTEGER* offset, u32* key);

// Fills `information` of `length` bytes with the structure that `kind` names.
NTOS_IMPORT NTSTATUS ZwQueryInformationFile(HANDLE file, IO_STATUS_BLOCK* result, void* information,
                                            u32 length, FILE_INFORMATION_CLASS kind);
}
