#pragma once

namespace ntoshost {

// One call of a file from its beginning to its end, which may come later than its work is done; so
// this object is to live longer than the lock of the files.
class LateCall {
 public:
  // Stops the program when the thread gets no APCs, by which the kernel ends the call.
  explicit LateCall(char const* call);
  ~LateCall();
  LateCall(LateCall const&) = delete;
  LateCall& operator=(LateCall const&) = delete;
};

}  // namespace ntoshost
