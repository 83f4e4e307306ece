#include "config/tInstanceRegistry.h"

#include "config/tObjectRoom.h"
#include "oxdiagk/statusCodes.h"
#include "vexk/placementNew.h"

namespace nOXDIAG100 {
namespace {

constexpr tSyncDescriptor kLock = {
    kSyncKindMutex, kSyncFlagLongLived, kSyncAccessSynchronize, {0, 0}};

// Zeros, before and after the object's life, are a registry without lock.
constinit tObjectRoom<tInstanceRegistry> room;

u32 fail(i32& status, i32 code) {
  status = code;
  return kNoHandle;
}

tConfigurable* findNone(i32& status, i32 code) {
  status = code;
  return nullptr;
}

}  // namespace

tInstanceRegistry& tInstanceRegistry::getInstance() {
  return room.get();
}

void tInstanceRegistry::constructInstance(tNamedInstances const& instances) {
  new (room.take()) tInstanceRegistry({}, instances);
}

void tInstanceRegistry::destroyInstance() {
  getInstance().~tInstanceRegistry();
  room.clear();
}

tInstanceRegistry::tInstanceRegistry(tHandleRange const& handles, tNamedInstances const& instances)
    : named(instances), range(handles), lock(syncOpen(nullptr, kLock, constructionStatus)) {
  if (!released.hasSlots() && constructionStatus >= 0) constructionStatus = kStatusOutOfMemory;
}

tInstanceRegistry::~tInstanceRegistry() {
  syncClose(lock);
}

i32 tInstanceRegistry::getConstructionStatus() const {
  return lock == nullptr && constructionStatus >= 0 ? kStatusNotInitialized : constructionStatus;
}

tConfigurable* tInstanceRegistry::findNamed(char const* name) const {
  return findNamedInstance(named, name);
}

u32 tInstanceRegistry::acquire(tConfigurable& instance, i32& status) {
  if (getConstructionStatus() < 0) return fail(status, getConstructionStatus());
  tSyncLock const guard(lock);
  if (guard.getStatus() < 0) return fail(status, guard.getStatus());
  u32 const handle = chooseHandle();
  if (handle == kNoHandle) return fail(status, kStatusNoFreeHandle);
  return record(handle, instance) ? handle : fail(status, kStatusOutOfMemory);
}

i32 tInstanceRegistry::release(u32 handle) {
  if (getConstructionStatus() < 0) return getConstructionStatus();
  tSyncLock const guard(lock);
  if (guard.getStatus() < 0) return guard.getStatus();
  tIssue const* const issue = table.find(handle);
  if (issue == nullptr) return kStatusUnknownHandle;
  issued.erase(issue->place);
  table.erase(handle);
  released.add(handle);
  return 0;
}

tConfigurable* tInstanceRegistry::find(u32 handle, i32& status) {
  if (getConstructionStatus() < 0) return findNone(status, getConstructionStatus());
  tSyncLock const guard(lock);
  if (guard.getStatus() < 0) return findNone(status, guard.getStatus());
  tIssue const* const found = table.find(handle);
  return found != nullptr ? found->instance : findNone(status, kStatusUnknownHandle);
}

// Until the last number was issued, the candidate and what follows it never was.
bool tInstanceRegistry::isPassedOver(u32 handle) const {
  return isReuseGuarded && (table.contains(handle) || released.contains(handle));
}

u32 tInstanceRegistry::chooseHandle() {
  u32 chosen = range.candidate;
  bool hasWrapped = false;
  while (isPassedOver(chosen)) {
    if (chosen != range.last) {
      ++chosen;
    } else if (!hasWrapped) {
      chosen = range.first;
      hasWrapped = true;
    } else {
      return kNoHandle;
    }
  }
  bool const isLast = chosen == range.last;
  range.candidate = isLast ? range.first : chosen + 1;
  isReuseGuarded = isReuseGuarded || isLast;  // no search wraps before the last was issued
  return chosen;
}

bool tInstanceRegistry::record(u32 handle, tConfigurable& instance) {
  if (!issued.push_back(handle)) return false;
  if (table.insert(handle, {&instance, --issued.end()})) return true;
  issued.pop_back();
  return false;
}

}  // namespace nOXDIAG100
