#pragma once

// What a bus and its children are to do with a sequence of requests, in plain words and without
// locks.

#include <string>
#include <vector>

#include "ntos/io.h"

// One child, from its creation to the end of the input.
struct tModelChild {
  u64 instance;
  u32 slot;
  DEVICE_OBJECT* device = nullptr;

  int state = 0;
  int previous = 0;
  int devicePower = 4;
  int systemPower = 1;
  bool isPresent = true;
  bool isReported = false;
  bool isLinked = true;
  bool isRemoved = false;  // by the system, and not started since
  bool isDrained = false;  // and so its handler has come to its end
  bool isAwaited = false;  // somebody waits for its going
};

class tPnpModel {
 public:
  static constexpr int kDeleted = 6;

  enum class tDeparture { Unknown, Awaited, Drained, Forgotten };

  // The status of a creation of which nothing fails for lack of memory.
  i32 create(u64 instance, u32 slot, bool hasGoodIds);

  // The child in the slot goes: how, and which.
  tDeparture take(u32 slot, tModelChild*& child);

  // The devices that the bus is to list; those that are absent are forgotten. The system is told
  // unless the devices below fail the request.
  std::vector<DEVICE_OBJECT*> relations(bool isTold);

  // A request moves the child. True when its status is success whatever the request came with.
  bool movePnp(tModelChild& child, u8 minor);
  void setDevicePower(tModelChild& child, int state);

  // The bus goes.
  void dismiss(bool isSurprise);

  std::vector<tModelChild> children;

 private:
  void enter(tModelChild& child, int state);
  void cancel(tModelChild& child, int query);
  void remove(tModelChild& child);
  void letGo(tModelChild& child);
  bool hasInstance(u64 instance) const;

  bool isRemoving = false;
};
