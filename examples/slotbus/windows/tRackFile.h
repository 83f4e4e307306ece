#pragma once

#include "ntos/types.h"
#include "oxdiagk/tStatus2.h"
#include "vexk/tMemBlockReferenceTemplate.h"

// The file of a rack, read whole into paged memory, which belongs to this object.
// IRQL: PASSIVE_LEVEL.
class tRackFile {
 public:
  // Reads the file that a kernel path names, such as \SystemRoot\System32\drivers\rack.txt. On
  // failure `status` holds the kernel's reason, kStatusTextTooLong or -50352 (no memory). Does
  // nothing when `status` is an error already.
  void read(wchar_t const* path, nOXDIAG100::tStatus2& status);

  char const* getText() const { return text.get(); }
  size_t getLength() const { return length; }

 private:
  void readFrom(HANDLE file, nOXDIAG100::tStatus2& status);
  void readText(HANDLE file, u32 size, nOXDIAG100::tStatus2& status);

  tMemBlockReferenceTemplate<char> text;
  size_t length = 0;
};
