#pragma once

// Requests to the configuration tunnel as a user-mode program makes them, for tests on every
// target: there, the memory of the test itself is user memory.

#include "config/tConfigTunnel.h"
#include "oxdiagk/tunnelRequest.h"

inline u64 addressOf(void const* object) {
  return reinterpret_cast<u64>(object);
}

inline nOXDIAG100::tTunnelRecord makeRecord(u32 operation, u64 address = 0, u64 source = 0,
                                            u64 extra = 0) {
  return {operation, 0, address, source, extra};
}

inline nOXDIAG100::tTunnelRecord acquireRecord(u32* handle, char const* name) {
  return makeRecord(1, addressOf(handle), addressOf(name), __builtin_strlen(name));
}

inline nOXDIAG100::tTunnelRecord textRecord(char const* options) {
  return makeRecord(4, addressOf(options), __builtin_strlen(options));
}

inline nOXDIAG100::tTunnelRecord inquireRecord(char* buffer, u32 size, u32* needed) {
  return makeRecord(5, addressOf(buffer), size, addressOf(needed));
}

// A request with its records; at most 8.
struct tTestRequest {
  template <class... tRecords>
  explicit tTestRequest(u32 handle, tRecords... given)
      : header{handle, sizeof...(given)}, records{given...} {}

  void send() const { nOXDIAG100::tConfigTunnel::getInstance().dispatch(addressOf(this)); }

  nOXDIAG100::tTunnelHeader header;
  nOXDIAG100::tTunnelRecord records[8];
};
static_assert(sizeof(tTestRequest) == 8 + 8 * 32);
