#include "file/narrowName.h"

#include <string.h>

namespace ntoshost {
namespace {

constexpr u32 kFirstPrintable = 0x20;

bool isAllowed(u32 character) {
  return character >= kFirstPrintable &&
         (character >= 0x80 || strchr("\"*:<>?|", static_cast<int>(character)) == nullptr);
}

bool isHighHalf(u32 unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowHalf(u32 unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The first byte of a character of several bytes, without the bits of the character.
u32 leadOf(u32 extraBytes) {
  return 0xF0 << (3 - extraBytes) & 0xFF;
}

}  // namespace

bool NarrowName::set(wchar_t const* text, size_t length) {
  m_length = 0;
  for (size_t at = 0; at < length; ++at) {
    u32 character = text[at];
    if (isHighHalf(character) && at + 1 < length && isLowHalf(text[at + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (text[++at] - 0xDC00u);
    }
    if (!isAllowed(character) || !append(character)) return false;
  }
  m_text[m_length] = 0;
  return m_length != 0 && strcmp(m_text, ".") != 0 && strcmp(m_text, "..") != 0;
}

void NarrowName::setNarrow(char const* name) {
  m_length = strlen(name);
  memcpy(m_text, name, m_length + 1);
}

bool NarrowName::append(u32 character) {
  u32 const extra = (character >= 0x80) + (character >= 0x800) + (character >= 0x10000);
  if (m_length + extra + 1 >= kCapacity) return false;
  u32 const lead = extra == 0 ? 0 : leadOf(extra);
  m_text[m_length++] = static_cast<char>(lead | character >> 6 * extra);
  for (u32 left = extra; left-- != 0;) {
    m_text[m_length++] = static_cast<char>(0x80 | (character >> 6 * left & 0x3F));
  }
  return true;
}

}  // namespace ntoshost
