#pragma once

// The bytes that tBinaryObjectWriter writes and tBinaryObjectReader reads. All numbers are
// little-endian, nothing is aligned, and items carry no mark of their kind: they are read in the
// order and the kinds in which they were written.
//
//     stream       magic, version, items
//     magic        4 bytes 'Q' 'E' 'L' 'M'
//     version      4 bytes, kBinaryStreamVersion
//     character    1 byte
//     i32, u32     4 bytes
//     i64, u64     8 bytes
//     string       4 bytes count, then that many characters of 1 byte
//     wide string  4 bytes count, then that many UTF-16 code units of 2 bytes
//     object       2 bytes length of the name, the registered name of its class without terminator,
//                  4 bytes length of the content, the items that its writeExternal wrote
//     null object  2 bytes 0
//
// The length of the content is there for readers that know less than the writer did: what a class
// leaves unread of its content is passed over, and so is an object whose class is not registered.
//
// A string "ab" and a null object, after the header:
//
//     51 45 4C 4D 01 00 00 00  02 00 00 00 61 62  00 00

#include "compiler/types.h"

namespace nQELM100 {

constexpr char kBinaryStreamMagic[4] = {'Q', 'E', 'L', 'M'};
constexpr u32 kBinaryStreamVersion = 1;
constexpr size_t kBinaryStreamHeaderSize =
    sizeof(kBinaryStreamMagic) + sizeof(kBinaryStreamVersion);
static_assert(kBinaryStreamHeaderSize == 8);

// Objects that may lie in one another: the outermost object is at depth 1. Reading and writing take
// stack for every level.
constexpr u32 kMostObjectDepth = 16;

}  // namespace nQELM100
