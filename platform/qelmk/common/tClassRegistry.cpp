#include "tClassRegistry.h"

#include "qelmk/classRegistry.h"
#include "qelmk/module.h"
#include "qelmk/statusCodes.h"
#include "vexk/statusCodes.h"
#include "vexk/tFastMutexGuard.h"

namespace nQELM100 {
namespace {

u64 hashOf(char const* name, size_t length) {
  u64 hash = 0xCBF29CE484222325;  // FNV-1a
  for (size_t index = 0; index < length; ++index) {
    hash = (hash ^ static_cast<u8>(name[index])) * 0x100000001B3;
  }
  return hash;
}

bool isNamed(tClassImplementation const& record, char const* name, size_t length) {
  return __builtin_strlen(record.getName()) == length &&
         __builtin_memcmp(record.getName(), name, length) == 0;
}

size_t lengthOf(char const* name) {
  return name == nullptr ? 0 : __builtin_strlen(name);
}

}  // namespace

constinit tClassRegistry qelmkClasses;

void tClassRegistry::initialise() {
  ExInitializeFastMutex(&guard);
  isReady = true;
}

void tClassRegistry::add(tClassImplementation& record, i32& status) {
  if (status < 0) return;
  size_t const length = lengthOf(record.name);
  if (length == 0 || length > kMostClassNameLength) {
    status = kStatusBadArgument;
  } else if (pkgIsQelmkInitialized() == 0) {
    status = kStatusNotInitialized;
  }
  if (status < 0) return;
  u64 const hash = hashOf(record.name, length);
  tFastMutexGuard const held(guard);
  tClassImplementation*& place = *findPlace(record.name, length, hash);
  if (place != nullptr && place != &record) {
    status = kStatusClassNameTaken;
    return;
  }
  place = &record;
  record.nameHash = hash;
  ++record.registrationCount;
}

void tClassRegistry::remove(tClassImplementation& record) {
  if (!isReady) return;
  tFastMutexGuard const held(guard);
  if (record.registrationCount == 0 || --record.registrationCount != 0) return;
  size_t const length = lengthOf(record.name);
  tClassImplementation*& place = *findPlace(record.name, length, record.nameHash);
  tClassImplementation& successor = takeLeaf(record);
  if (&successor == &record) {
    place = nullptr;
    return;
  }
  for (u32 side = 0; side < 2; ++side) {
    successor.children[side] = record.children[side];
    record.children[side] = nullptr;
  }
  place = &successor;
}

tClassImplementation const* tClassRegistry::find(char const* name, size_t length) {
  if (name == nullptr || length == 0 || !isReady) return nullptr;
  u64 const hash = hashOf(name, length);
  tFastMutexGuard const held(guard);
  return *findPlace(name, length, hash);
}

// The link that leads to the class of this name, or the empty one where it would stand.
tClassImplementation** tClassRegistry::findPlace(char const* name, size_t length, u64 hash) {
  tClassImplementation** place = &root;
  for (u64 way = hash; *place != nullptr; way >>= 1) {
    tClassImplementation& record = **place;
    if (record.nameHash == hash && isNamed(record, name, length)) break;
    place = &record.children[way & 1];
  }
  return place;
}

// Cuts a leaf off below `record` and returns it, or `record` when that is a leaf itself.
tClassImplementation& tClassRegistry::takeLeaf(tClassImplementation& record) {
  tClassImplementation* leaf = &record;
  tClassImplementation** link = nullptr;
  for (;;) {
    u32 const side = leaf->children[0] != nullptr ? 0 : 1;
    if (leaf->children[side] == nullptr) break;
    link = &leaf->children[side];
    leaf = *link;
  }
  if (link != nullptr) *link = nullptr;
  return *leaf;
}

void registerClass(tClassImplementation& record, i32& status) {
  qelmkClasses.add(record, status);
}

void unregisterClass(tClassImplementation& record) {
  qelmkClasses.remove(record);
}

}  // namespace nQELM100
