#include "tClassRegistry.h"

#include "qelmk/classRegistry.h"
#include "qelmk/module.h"
#include "qelmk/statusCodes.h"
#include "vexk/statusCodes.h"
#include "vexkntos/tFastMutexGuard.h"

namespace nQELM100 {
namespace {

constexpr u64 kHashFactor = 0x9E3779B97F4A7C15;

u64 readWord(char const* bytes) {
  u64 word = 0;
  __builtin_memcpy(&word, bytes, sizeof(word));
  return word;
}

// Eight bytes at a time; the last eight may be taken twice in part.
u64 hashOf(char const* name, size_t length) {
  u64 hash = length;
  auto const take = [&hash](u64 word) {
    hash = (hash ^ word) * kHashFactor;
    hash ^= hash >> 32;
  };
  if (length < sizeof(u64)) {
    for (size_t index = 0; index < length; ++index) take(static_cast<u8>(name[index]));
  } else {
    for (size_t index = 0; index + sizeof(u64) < length; index += sizeof(u64)) {
      take(readWord(name + index));
    }
    take(readWord(name + length - sizeof(u64)));
  }
  take(0);  // so that the highest bits of the last word reach the lowest of the hash
  return hash;
}

bool isNamed(tClassImplementation const& record, char const* name, size_t length) {
  return record.getNameLength() == length && __builtin_memcmp(record.getName(), name, length) == 0;
}

void setCount(u32& count, u32 value) {
  __atomic_store_n(&count, value, __ATOMIC_RELEASE);
}

}  // namespace

constinit tClassRegistry qelmkClasses;

void tClassRegistry::initialise() {
  ExInitializeFastMutex(&guard);
  isReady = true;
}

void tClassRegistry::add(tClassImplementation& record, i32& status) {
  if (status < 0) return;
  size_t const length = record.nameLength;
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
  setCount(record.registrationCount, record.registrationCount + 1);
}

void tClassRegistry::remove(tClassImplementation& record) {
  if (!isReady) return;
  tFastMutexGuard const held(guard);
  if (record.registrationCount == 0) return;
  setCount(record.registrationCount, record.registrationCount - 1);
  if (record.registrationCount != 0) return;
  __atomic_store_n(&removals, removals + 1, __ATOMIC_RELEASE);
  tClassImplementation*& place = *findPlace(record.name, record.nameLength, record.nameHash);
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
