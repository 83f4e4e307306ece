#pragma once

#include <stddef.h>

namespace ntoshost {

// Takes characters into a fixed buffer and counts those that have no room.
template <class Character>
class TextSink {
 public:
  TextSink(Character* buffer, size_t room) : m_buffer(buffer), m_room(room) {}

  void put(Character character) {
    if (m_wanted < m_room) m_buffer[m_wanted] = character;
    ++m_wanted;
  }

  void fill(char character, size_t count) {
    for (; count > 0 && m_wanted < m_room; --count) put(static_cast<Character>(character));
    m_wanted += count;
  }

  bool isCut() const { return m_wanted > m_room; }

  // Characters in the buffer.
  size_t getLength() const { return isCut() ? m_room : m_wanted; }

 private:
  Character* m_buffer;
  size_t m_room;
  size_t m_wanted = 0;
};

// Puts text of the one or the other kind. UTF-16 becomes UTF-8 among bytes; bytes become the UTF-16
// units of the same value.
void putText(TextSink<char>& sink, char const* text, size_t length);
void putText(TextSink<char>& sink, wchar_t const* text, size_t length);
void putText(TextSink<wchar_t>& sink, char const* text, size_t length);
void putText(TextSink<wchar_t>& sink, wchar_t const* text, size_t length);

}  // namespace ntoshost
