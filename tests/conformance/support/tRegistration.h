#pragma once

// A class that is found by its name for the length of a scope.

#include "ntos/types.h"

template <class T>
class tRegistration {
 public:
  tRegistration() { T::___registerClass(status); }
  ~tRegistration() {
    if (status >= 0) T::___unregisterClass();
  }
  tRegistration(tRegistration const&) = delete;
  tRegistration& operator=(tRegistration const&) = delete;

  i32 getStatus() const { return status; }

 private:
  i32 status = 0;
};
