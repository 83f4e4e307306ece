#pragma once

// Where a child device is in its plug-and-play life, and where it was before.

#include "ntos/types.h"

namespace nOXDIAG100 {

enum class tPnpState : u32 {
  NotStarted = 0,  // made, or removed while its bus still lists it
  Started = 1,
  QueryStop = 2,
  Stopped = 3,
  QueryRemove = 4,
  SurpriseRemoved = 5,
  Deleted = 6,  // for ever
};

class tPnpStates {
 public:
  tPnpState get() const { return current; }
  tPnpState getPrevious() const { return previous; }

  // Goes to a state and remembers the one that is left. The state that it is in already is not
  // entered again, so a query made twice is undone by one cancel.
  void enter(tPnpState next) {
    if (current == next || current == tPnpState::Deleted) return;
    previous = current;
    current = next;
  }

  // Goes back to the state before `query`; in another state nothing happens.
  void cancel(tPnpState query) {
    if (current == query) enter(previous);
  }

 private:
  tPnpState current = tPnpState::NotStarted;
  tPnpState previous = tPnpState::NotStarted;
};

}  // namespace nOXDIAG100
