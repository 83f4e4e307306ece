#pragma once

#include "file/handleTable.h"
#include "file/place.h"

namespace ntoshost {

// What ZwCreateFile is asked for, beside the name.
struct OpenRequest {
  ACCESS_MASK access;  // without the generic rights
  u32 share;
  u32 disposition;
  u32 options;

  bool empties() const {
    return disposition == FILE_SUPERSEDE || disposition == FILE_OVERWRITE ||
           disposition == FILE_OVERWRITE_IF;
  }
  bool mayCreate() const { return disposition != FILE_OPEN && disposition != FILE_OVERWRITE; }
  bool wantsFolder() const { return (options & FILE_DIRECTORY_FILE) != 0; }
  bool wantsFile() const { return (options & FILE_NON_DIRECTORY_FILE) != 0; }
};

// Opens or creates what is at the place, when nobody who has it open objects. On success `file` has
// everything but its handle and drive, and `done` says what was done, as IO_STATUS_BLOCK wants it.
NTSTATUS openPlace(Place const& place, OpenRequest const& request, HandleTable const& others,
                   OpenFile& file, u64& done);

}  // namespace ntoshost
