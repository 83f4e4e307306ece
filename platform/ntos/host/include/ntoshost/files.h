#pragma once

#include "ntos/types.h"

// The control side of the executive's files. A drive letter stands for a folder of this machine:
//
//     ntoshost::mountDrive('C', "/some/folder");  // \??\C:\rack.txt is /some/folder/rack.txt
//
// What differs from the kernel's own drives:
// - a slash separates folders as a backslash does,
// - case-insensitive opens prefer the exact name; otherwise only A to Z are taken for a to z,
// - symbolic links are not followed below the folder, so no name leads out of it,
// - a file that someone else has open is never emptied, whatever is shared: sharing violation,
// - FILE_WRITE_THROUGH is not obeyed: a write is in the file when it returns, not on the disk,
// - handles that stay open at the end are the program's to look for: outstandingHandles().
//
// All of it is thread safe.

namespace ntoshost {

// Makes `folder` the drive of this letter, in place of the one before. Files already open stay what
// they are. False, and nothing changes, when the letter is none or the folder cannot be opened.
bool mountDrive(char letter, char const* folder);

// No drive has this letter from now on.
void unmountDrive(char letter);

// From now on at most `bytes` more can be written to the drive: a write beyond that gives
// STATUS_DISK_FULL and writes nothing. A new mountDrive lifts the limit.
void limitDrive(char letter, u64 bytes);

// The writes since the start that did not reach their file, or not whole, whatever the caller made
// of it.
struct FailedWrites {
  u64 count;
  NTSTATUS first;  // what the first of them gave; STATUS_SUCCESS when there is none
};
FailedWrites failedWrites();

// Handles that were opened and not closed.
u64 outstandingHandles();

// Prints them on standard error, one line a handle, oldest first.
void reportHandles();

// Stops the program when a handle is outstanding. `who` heads the sentence.
void requireNoHandles(char const* who);

// From now on every call but ZwClose gives STATUS_OBJECT_TYPE_MISMATCH for this handle, as in a
// process where it means nothing.
void invalidateHandle(HANDLE handle);

// The calls, as they are counted and made to fail.
enum class FileCallKind : u32 { Create, Read, Write, Query, Close };
constexpr u32 kFileCallKinds = 5;

// From here on the calls number `first` to `first + count - 1` of the kind (counted from 1) do
// nothing and give `status`; a later rule for the same kind replaces this one, a count of 0 ends
// it. (To fail by count whatever the call is, see ntoshost/faults.h.) Not for Close.
void failFileCalls(FileCallKind kind, u64 first, u64 count, NTSTATUS status);

// From now on every call but ZwClose returns so many milliseconds after it has done its work, as
// those of a slow drive; 0, as at the start, at once. Other threads' calls go on meanwhile.
void delayFileCalls(u32 milliseconds);

// One call with its arguments. What a kind does not have is zero.
struct FileCall {
  static constexpr u32 kNameCapacity = 264;   // characters, with the terminator
  static constexpr u32 kBytesCapacity = 520;  // longer writes are kept up to here

  FileCallKind kind;
  NTSTATUS status;  // what it gave
  HANDLE handle;    // what it was given, or what Create gave

  HANDLE root;
  wchar_t name[kNameCapacity];
  u32 attributes;  // OBJ_ values
  ACCESS_MASK access;
  bool hasAllocationSize;
  u32 fileAttributes;
  u32 shareAccess;
  u32 disposition;
  u32 options;

  bool hasOffset;
  u32 length;
  u8 bytes[kBytesCapacity];  // of a write
};

// Calls since the start or the last forgetFileCalls; the last 64 of them are kept.
u64 fileCallsSeen();
void forgetFileCalls();

// The call with this index, counted from 0 since forgetFileCalls. Stops the program when it is not
// kept.
FileCall fileCall(u64 index);

}  // namespace ntoshost
