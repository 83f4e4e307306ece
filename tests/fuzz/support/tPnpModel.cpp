#include "support/tPnpModel.h"

namespace {

constexpr int kNotStarted = 0;
constexpr int kStarted = 1;
constexpr int kQueryStop = 2;
constexpr int kStopped = 3;
constexpr int kQueryRemove = 4;
constexpr int kSurpriseRemoved = 5;
constexpr int kPowerOn = 1;
constexpr i32 kBadIds = -50005;
constexpr i32 kBusRemoved = -50300;
constexpr i32 kExists = -50303;

}  // namespace

bool tPnpModel::hasInstance(u64 instance) const {
  for (tModelChild const& child : children) {
    if (child.isLinked && child.isPresent && child.instance == instance) return true;
  }
  return false;
}

i32 tPnpModel::create(u64 instance, u32 slot, bool hasGoodIds) {
  if (hasInstance(instance)) return kExists;
  if (!hasGoodIds) return kBadIds;
  if (isRemoving) return kBusRemoved;
  children.push_back({instance, slot});
  return 0;
}

tPnpModel::tDeparture tPnpModel::take(u32 slot, tModelChild*& taken) {
  for (tModelChild& child : children) {
    if (!child.isLinked || !child.isPresent || child.slot != slot) continue;
    taken = &child;
    child.isPresent = false;
    if (child.state != kNotStarted) {
      child.isAwaited = true;
      return tDeparture::Awaited;
    }
    child.isDrained = true;
    if (child.isReported) return tDeparture::Drained;
    child.isLinked = false;
    child.state = kDeleted;
    return tDeparture::Forgotten;
  }
  return tDeparture::Unknown;
}

std::vector<DEVICE_OBJECT*> tPnpModel::relations(bool isTold) {
  std::vector<DEVICE_OBJECT*> listed;
  for (tModelChild& child : children) {
    if (!child.isLinked) continue;
    child.isLinked = child.isPresent;
    if (!child.isPresent) continue;
    if (isTold) child.isReported = true;
    listed.push_back(child.device);
  }
  return listed;
}

void tPnpModel::enter(tModelChild& child, int state) {
  if (child.state == state) return;
  child.previous = child.state;
  child.state = state;
}

void tPnpModel::cancel(tModelChild& child, int query) {
  if (child.state == query) enter(child, child.previous);
}

void tPnpModel::letGo(tModelChild& child) {
  if (!child.isAwaited) return;
  child.isAwaited = false;
  child.isDrained = true;
}

void tPnpModel::remove(tModelChild& child) {
  child.isRemoved = true;
  if (child.isLinked) return enter(child, kNotStarted);
  enter(child, kDeleted);
  child.isAwaited = false;
  child.isDrained = true;
}

bool tPnpModel::movePnp(tModelChild& child, u8 minor) {
  if (child.state == kDeleted) return minor == 2;
  switch (minor) {
    case 0:
      enter(child, kStarted);
      child.isRemoved = false;
      child.devicePower = kPowerOn;
      return true;
    case 1:
      enter(child, kQueryRemove);
      return true;
    case 2:
      remove(child);
      return true;
    case 3:
      cancel(child, kQueryRemove);
      return true;
    case 4:
      enter(child, kStopped);
      return true;
    case 5:
      enter(child, kQueryStop);
      return true;
    case 6:
      cancel(child, kQueryStop);
      return true;
    case 11:
      return true;
    case 23:
      enter(child, kSurpriseRemoved);
      letGo(child);
      return true;
    default:
      return false;
  }
}

void tPnpModel::setDevicePower(tModelChild& child, int state) {
  bool const isChange = child.devicePower != state;
  child.devicePower = state;
  if (isChange && state != kPowerOn) letGo(child);
}

void tPnpModel::dismiss(bool isSurprise) {
  isRemoving = true;
  for (tModelChild& child : children) {
    if (!child.isLinked) continue;
    child.isLinked = false;
    bool const isAtEnd = !isSurprise || child.isRemoved || !child.isReported;
    if (child.state == kNotStarted && isAtEnd) remove(child);
  }
}
