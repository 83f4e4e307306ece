#pragma once

// What the configuration tunnel does, told a second time: on user memory that is a text.

#include <map>
#include <string>

#include "assert/tModelMemory.h"
#include "ntos/types.h"

class tTunnelModel {
 public:
  // `bytes` are the user memory, at `base`; there is none beside it but `readOnly`. `handle` is
  // that of the recorder, `nextHandle` the one that the registry issues next.
  tTunnelModel(std::string bytes, u64 base, u32 handle, u32 nextHandle)
      : bytes(std::move(bytes)), base(base), recorder(handle), nextHandle(nextHandle) {}

  void dispatch(u64 request);

  std::string bytes;
  std::string readOnly;  // what can only be read, right before the bytes
  u64 base;
  u32 recorder;  // 0 when the request released it
  u32 nextHandle;
  std::map<u32, char> acquired;  // 't' or 'a', by handle
  std::string calls;             // of the recorder
  tModelMemory memory;

 private:
  struct tRecord;

  std::string copyIn(u64 address, u64 length) const;
  void copyOut(u64 address, std::string const& content);
  void serve(u32 handle, tRecord const& record);
  void acquire(tRecord const& record);
  u32 acquireNamed(std::string name);
  void release(u32 handle);
  void configure(u32 handle, tRecord const& record);
  void inquire(u32 handle, tRecord const& record);
};

// What the recorder of the target answers to an inquiry.
inline constexpr char kRecorderSettings[] = " --recorder on --colour green";
