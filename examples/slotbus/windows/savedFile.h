#pragma once

#include "oxdiagk/tStatus2.h"

// Makes a file of these bytes, in place of one that may be there, under a kernel path such as
// \??\C:\rack.statuses. On failure `status` holds the kernel's reason. Does nothing when `status`
// is an error already. IRQL: PASSIVE_LEVEL.
void saveFile(wchar_t const* path, u8 const* bytes, u32 size, nOXDIAG100::tStatus2& status);
