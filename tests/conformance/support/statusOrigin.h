#pragma once

// The status macros with an origin that the running test chooses.

#include "ntos/types.h"

// Null until a test chooses one.
inline constinit char const* originComponent = nullptr;
inline constinit char const* originFile = nullptr;

#define OXDIAG_STATUS_COMPONENT originComponent
#define OXDIAG_STATUS_FILE originFile

#include "oxdiagk/statusMacros.h"

// Chooses the origin for the length of a test.
class tOrigin {
 public:
  tOrigin(char const* component, char const* file) {
    originComponent = component;
    originFile = file;
  }
  ~tOrigin() { originComponent = originFile = nullptr; }
  tOrigin(tOrigin const&) = delete;
  tOrigin& operator=(tOrigin const&) = delete;
};

// How many return addresses the status has kept.
inline u32 countAddresses(nOXDIAG100::tStatus2 const& status) {
  u64 addresses[nOXDIAG100::tStatus2::kStackTraceLength];
  status.getStackTrace(addresses);
  u32 count = 0;
  for (u64 address : addresses) count += address != 0 ? 1 : 0;
  return count;
}

// A text of `size` - 1 different characters for every place, so that a cut shows where it was made.
template <u32 size>
class tLongText {
 public:
  tLongText() {
    for (u32 i = 0; i + 1 < size; ++i) text[i] = static_cast<char>('!' + i % 90);
    text[size - 1] = '\0';
  }
  char const* get() const { return text; }

  // The last `length` characters.
  char const* tail(u32 length) const { return text + size - 1 - length; }

 private:
  char text[size];
};
