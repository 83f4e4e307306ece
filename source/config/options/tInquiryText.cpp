#include "config/options/tInquiryText.h"

#include "vexk/number.h"

namespace nOXDIAG100 {

tInquiryText::tInquiryText(char* buffer, u32 size)
    : buffer(buffer), size(buffer == nullptr ? 0 : size), position(buffer), room(this->size) {
}

tInquiryText& tInquiryText::append(char const* text) {
  for (; *text != 0; ++text, ++length) {
    if (room == 0) continue;
    *position++ = *text;
    --room;
  }
  return *this;
}

tInquiryText& tInquiryText::appendNumber(u64 value) {
  char text[kNumberTextSize];
  vexNumberToText(value, kRadixDecimal, text);
  return append(text);
}

tInquiryText& tInquiryText::appendOnOff(bool isOn) {
  return append(isOn ? " on" : " off");
}

tInquiryText& tInquiryText::skip(u32 needed) {
  u32 const pieceLength = needed == 0 ? 0 : needed - 1;
  u32 const written = pieceLength < room ? pieceLength : room;
  length += pieceLength;
  position += written;
  room -= written;
  return *this;
}

char* tInquiryText::finish(unsigned int* needed) {
  if (room != 0) *position = 0;
  if (size != 0) buffer[size - 1] = 0;
  if (needed != nullptr) *needed = length + 1;
  return position;
}

}  // namespace nOXDIAG100
