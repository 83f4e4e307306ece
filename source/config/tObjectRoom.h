#pragma once

#include "ntos/types.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {

// Room for an object of static storage duration. The object is built and destroyed by hand: no
// constructor runs when the image is loaded, and no destructor is registered for its end. Until
// then, and after clear(), the room is zeros.
template <class T>
class tObjectRoom {
 public:
  constexpr tObjectRoom() = default;

  // Where the object is to be built.
  void* take() { return bytes; }

  T& get() { return *__builtin_launder(static_cast<T*>(static_cast<void*>(bytes))); }

  // Of an object that is destroyed.
  void clear() { __builtin_memset(bytes, 0, sizeof(bytes)); }

 private:
  alignas(T) u8 bytes[sizeof(T)] = {};
};

}  // namespace nOXDIAG100
