#pragma once

#include "ntos/file.h"

// Opens the file of a kernel path for synchronous work, owned by the caller, who closes it with
// ZwClose. `access`, `share` and `disposition` are those of ZwCreateFile. PASSIVE_LEVEL.
NTSTATUS openFile(wchar_t const* path, ACCESS_MASK access, u32 share, u32 disposition,
                  HANDLE& file);
