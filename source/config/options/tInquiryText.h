#pragma once

// The text that inquire gives, built into a buffer of the caller; every inquire is written with it.

#include "ntos/types.h"

namespace nOXDIAG100 {

// Appends text as far as the buffer reaches and counts all of it; finish() terminates it, and the
// last byte of the buffer in any case. Any IRQL.
//
//     tInquiryText text(buffer, size);
//     text.append(" --prefixwidth ").appendNumber(width).finish(needed);
class tInquiryText {
 public:
  // A null buffer or a size of 0 (in bytes) only counts.
  tInquiryText(char* buffer, u32 size);

  tInquiryText& append(char const* text);

  // In decimal.
  tInquiryText& appendNumber(u64 value);

  // " on" or " off".
  tInquiryText& appendOnOff(bool isOn);

  // For a piece that someone else writes in the manner of inquire: it may write getRoom() bytes at
  // getPosition(), and `needed`, its length plus one, is then given to skip().
  char* getPosition() const { return position; }
  u32 getRoom() const { return room; }
  tInquiryText& skip(u32 needed);

  // Terminates the text. Stores its whole length plus one, unless `needed` is null. Returns where
  // the text in the buffer ends: at its terminator, or behind the buffer when the text was cut.
  char* finish(unsigned int* needed);

 private:
  char* const buffer;
  u32 const size;
  char* position;
  u32 room;  // bytes from position to the end of the buffer
  u32 length = 0;
};

}  // namespace nOXDIAG100
