#pragma once

// The content of a container as text, to compare a container with itself before an operation, and
// to say in a failure message what was seen.

#include <gtest/gtest.h>

#include <string>

#include "stl/list.h"
#include "stl/map.h"
#include "stl/string.h"
#include "stl/vector.h"

inline std::string content(i32 number) {
  return std::to_string(number);
}
inline std::string content(u32 number) {
  return std::to_string(number);
}

template <class C, u32 Flags>
std::string content(_STL::basic_string<C, Flags> const& text) {
  EXPECT_EQ(text.c_str()[text.size()], C()) << "no terminator";
  std::string shown = "\"";
  for (C character : text) {
    shown += character >= 32 && character < 127 ? std::string(1, static_cast<char>(character))
                                                : "<" + std::to_string(character) + ">";
  }
  return shown + "\"";
}

template <class T, u32 Flags>
std::string content(_STL::vector<T, Flags> const& elements);

template <class Range>
std::string contentOfRange(Range const& range) {
  std::string shown = "[";
  size_t count = 0;
  for (auto const& element : range) {
    shown += content(element) + " ";
    ++count;
  }
  EXPECT_EQ(range.size(), count) << "size and elements differ";
  return shown + "]";
}

template <class T, u32 Flags>
std::string content(_STL::vector<T, Flags> const& elements) {
  return contentOfRange(elements);
}

template <class T, u32 Flags>
std::string content(_STL::list<T, Flags> const& elements) {
  return contentOfRange(elements);
}

template <class K, class V, class Less, u32 Flags>
std::string content(_STL::map<K, V, Less, Flags> const& table) {
  std::string shown = "{";
  for (auto const& entry : table) {
    shown += content(entry.key) + "=" + content(entry.value) + " ";
  }
  return shown + "}";
}
