#pragma once

// What a user-mode program hands to the configuration tunnel: the functions of
// "oxdiagk/instanceRegistry.h" as data. A request is a header and the records behind it, without a
// gap, in the program's memory; all numbers are little-endian, all addresses the program's own.
//
//     struct {
//       tTunnelHeader header;
//       tTunnelRecord records[2];
//     } request = {};
//     request.header = {handle, 2};
//     request.records[0].operation = kTunnelConfigureText;
//     request.records[0].address = reinterpret_cast<u64>(text);
//     request.records[0].source = length;
//     request.records[1].operation = kTunnelPush;
//
// The records run in order on the calling thread. No record reports whether it succeeded: only the
// results that its operation writes show that. A result is written up to the first byte that cannot
// be written. A record with an unknown operation is skipped. In both cases the records behind it
// still run. A header or a record that cannot be read ends the request, and so does the library's
// unload.
//
// The handle is read once, before the first record: a handle that a request acquires serves the
// next request. Each record is read once, when its turn comes, so a result may change a later
// record of the same request.

#include "compiler/types.h"

namespace nOXDIAG100 {

// The name of the tunnel among the platform's dispatchers.
constexpr char kTunnelName[] = "nOXDIAG100://nConfigTunnel";

// The longest text that the kernel copies in, in bytes. A longer one counts as a text for which
// there is no memory. Texts that are written have no such limit.
constexpr u32 kTunnelMostBytes = 0x100000;

struct tTunnelHeader {
  u32 handle;  // for all operations but kTunnelAcquire
  u32 count;   // of records; 0 does nothing
};

// Which function a record calls, and which fields of the record it uses.
enum tTunnelOperation : u32 {
  // acquireInstance. `address`: where the 4-byte handle goes, kNoHandle on failure. `source` and
  // `extra`: address and length of the name. A name of length 0, or one that cannot be read, is
  // empty and gets no handle. When there is no memory for the name it means "trace". A handle that
  // cannot be written is released at once.
  kTunnelAcquire = 1,
  kTunnelRelease = 2,    // releaseInstance
  kTunnelConfigure = 3,  // configure, of the object's own source
  // configure. `address` and `source`: address and length of the options. Does nothing when there
  // is no memory for them.
  kTunnelConfigureText = 4,
  // inquire. `address` and `source`: the buffer and its size in bytes. `extra`: where the 4-byte
  // needed size goes; it is 0 when the handle is none. Either address may be null. A buffer of any
  // size takes as much of the text as it has room for. No more bytes of it are written than are
  // needed; the text in it is terminated. The kernel takes memory for the smaller of text and
  // buffer; when there is none, only the needed size is written. The object is inquired for the
  // size first, and again when the text grows meanwhile.
  kTunnelInquire = 5,
  kTunnelPush = 6,  // pushConfiguration
  kTunnelPop = 7,   // popConfiguration
};

// Lengths and sizes are 4-byte numbers in the low half of their field; the high half is ignored.
// Texts have no terminator and end at a NUL byte or where they cannot be read any further.
struct tTunnelRecord {
  u32 operation;
  u32 reserved;
  u64 address;
  u64 source;
  u64 extra;
};

static_assert(sizeof(tTunnelHeader) == 8 && alignof(tTunnelHeader) == 4);
static_assert(offsetof(tTunnelHeader, handle) == 0 && offsetof(tTunnelHeader, count) == 4);
static_assert(sizeof(tTunnelRecord) == 32 && alignof(tTunnelRecord) == 8);
static_assert(offsetof(tTunnelRecord, operation) == 0 && offsetof(tTunnelRecord, reserved) == 4);
static_assert(offsetof(tTunnelRecord, address) == 8 && offsetof(tTunnelRecord, source) == 16);
static_assert(offsetof(tTunnelRecord, extra) == 24);

}  // namespace nOXDIAG100
