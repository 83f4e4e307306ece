#pragma once

// The externalized form of a status, where its items lie, and forms written by hand.

#include "oxdiagk/tStatus2.h"
#include "support/tItemStream.h"

// Items of the form of a status with detail, by index.
enum tFormItem : u32 {
  kFormLength = 0,
  kFormCode = 1,
  kFormFlag = 2,
  kFormDetailLength = 3,
  kFormComponent = 4,  // 24 characters
  kFormFile = 28,      // 101 characters
  kFormLine = 129,
  kFormLowHalves = 130,  // 10 numbers
  kFormDetailCode = 140,
  kFormDescriptionFlag = 141,
  kFormMarker = 142,
  kFormHighHalves = 143,  // 10 numbers; a description stands in front of them
  kFormCount = 153,       // without description
};

constexpr u32 kFixedLength = 8;
constexpr u32 kDetailFixedLength = 181;

constexpr i32 kFormError = -61007;

inline tItemStream::tItem character(char value) {
  return {tItemStream::kCharacter, static_cast<u8>(value)};
}
inline tItemStream::tItem unsignedItem(u32 value) {
  return {tItemStream::kU32, value};
}
inline tItemStream::tItem signedItem(i32 value) {
  return {tItemStream::kI32, static_cast<u32>(value)};
}

// A form with a known content: component "abc", file "rack.cpp", line 77, addresses
// 0x0000000100000010, 0x0000000200000020, ... and the code kFormError.
inline void writeField(tItemStream& stream, char const* text, u32 size) {
  u32 const length = static_cast<u32>(__builtin_strlen(text));
  for (u32 i = 0; i != size; ++i) stream.put(character(i < length ? text[i] : '\0'));
}
inline void writeKnownForm(tItemStream& stream) {
  stream.put(unsignedItem(kFixedLength));
  stream.put(signedItem(kFormError));
  stream.put(unsignedItem(1));
  stream.put(unsignedItem(kDetailFixedLength));
  writeField(stream, "abc", 24);
  writeField(stream, "rack.cpp", 101);
  stream.put(unsignedItem(77));
  for (u32 i = 1; i <= 10; ++i) stream.put(unsignedItem(i * 0x10));
  stream.put(signedItem(kFormError));
  stream.put(unsignedItem(0));
  stream.put(unsignedItem(1));
  for (u32 i = 1; i <= 10; ++i) stream.put(unsignedItem(i));
}

// Whether the addresses are those of the known form, with or without their high halves.
inline bool hasKnownAddresses(nOXDIAG100::tStatus2 const& status, bool withHighHalves = true) {
  u64 addresses[nOXDIAG100::tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  for (u32 i = 0; i != nOXDIAG100::tStatus2::kStackTraceLength; ++i) {
    u64 const high = withHighHalves ? u64{i + 1} << 32 : 0;
    if (addresses[i] != (high | (i + 1) * 0x10)) return false;
  }
  return true;
}

inline bool hasKnownOrigin(nOXDIAG100::tStatus2 const& status) {
  return __builtin_strcmp(status.getComponentName(), "abc") == 0 &&
         __builtin_strcmp(status.getFileName(), "rack.cpp") == 0 && status.getLineNumber() == 77;
}
