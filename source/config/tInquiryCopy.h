#pragma once

// What inquire gives, for a program whose own buffer the kernel's objects may not write.

#include "ntos/types.h"

namespace nOXDIAG100 {

// Inquires the object of a handle into memory of its own: as large as the text or as the buffer
// that the text is for, whichever is smaller. PASSIVE_LEVEL.
class tInquiryCopy {
 public:
  // `room`: the size of that buffer in bytes; 0 only measures.
  tInquiryCopy(u32 handle, u32 room);
  ~tInquiryCopy();

  tInquiryCopy(tInquiryCopy const&) = delete;
  tInquiryCopy& operator=(tInquiryCopy const&) = delete;

  // What belongs into the buffer: the text with its terminator, cut as inquire cuts it. Nothing
  // when memory was exhausted.
  char const* getText() const { return text; }
  u32 getSize() const { return needed < size ? needed : size; }

  // The size of the whole text, in bytes; 0 when the handle is none.
  unsigned int getNeeded() const { return needed; }

 private:
  u32 nextSize(u32 room) const;
  void inquireAgain(u32 handle, u32 newSize);

  char* text = nullptr;
  u32 size = 0;  // of the text's memory
  unsigned int needed = 0;
};

}  // namespace nOXDIAG100
