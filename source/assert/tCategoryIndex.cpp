#include "oxdiagk/tCategoryIndex.h"

namespace nOXDIAG100 {
namespace {

__extension__ using tWide = unsigned __int128;

// Odd, and without a pattern in their bits.
constexpr u64 kMultiplier = 0x9E3779B97F4A7C15;
constexpr u64 kLastMultiplier = 0xD6E8FEB86659FD93;

// Every bit of the result depends on all bits of `number`.
u64 mix(u64 number, u64 multiplier) {
  tWide const product = static_cast<tWide>(number) * multiplier;
  return static_cast<u64>(product) ^ static_cast<u64>(product >> 64);
}

template <class T>
T readAt(char const* bytes) {
  T number;
  __builtin_memcpy(&number, bytes, sizeof(number));
  return number;
}

// The last eight bytes, or all of fewer. Bytes may be in it twice: the length is hashed as well.
u64 lastWordOf(char const* name, size_t length) {
  if (length >= 8) return readAt<u64>(name + length - 8);
  if (length >= 4) return u64{readAt<u32>(name)} << 32 | readAt<u32>(name + length - 4);
  if (length == 0) return 0;
  u64 const first = readAt<u8>(name);
  u64 const middle = readAt<u8>(name + length / 2);
  return first << 16 | middle << 8 | readAt<u8>(name + length - 1);
}

}  // namespace

tCategoryIndex::tEntry* tCategoryIndex::find(char const* name) const {
  u64 const hash = hashOf(name);
  tEntry* const* link = &roots[hash % kRoots];
  for (u64 digits = hash / kRoots;; digits /= kBranches) {
    tEntry* const entry = __atomic_load_n(link, __ATOMIC_ACQUIRE);
    if (entry == nullptr) return nullptr;
    if (entry->hash == hash && __builtin_strcmp(entry->name, name) == 0) return entry;
    link = &entry->branches[digits % kBranches];
  }
}

void tCategoryIndex::add(tEntry& entry) {
  static_cast<_STL::tree_node&>(entry) = {};
  for (tEntry*& branch : entry.branches) branch = nullptr;
  entry.hash = hashOf(entry.name);
  addByName(entry);
  tEntry** link = &roots[entry.hash % kRoots];
  for (u64 digits = entry.hash / kRoots; *link != nullptr; digits /= kBranches) {
    link = &(*link)->branches[digits % kBranches];
  }
  __atomic_store_n(link, &entry, __ATOMIC_RELEASE);
}

void tCategoryIndex::giveUp(_STL::tree& entries) {
  entries.swap(byName);
  for (tEntry*& root : roots) root = nullptr;
}

u64 tCategoryIndex::hashOf(char const* name) const {
  size_t const length = __builtin_strlen(name);
  u64 state = secret ^ length;
  for (size_t index = 0; index + sizeof(u64) < length; index += sizeof(u64)) {
    state = mix(state ^ readAt<u64>(name + index), kMultiplier);
  }
  return mix(state ^ lastWordOf(name, length), kLastMultiplier);
}

void tCategoryIndex::addByName(tEntry& entry) {
  _STL::tree_node* parent = nullptr;
  u32 side = _STL::tree::kBefore;
  for (_STL::tree_node* at = byName.root(); at != nullptr; at = at->child[side]) {
    bool const isBefore = __builtin_strcmp(entry.name, static_cast<tEntry*>(at)->name) < 0;
    parent = at;
    side = isBefore ? _STL::tree::kBefore : _STL::tree::kBehind;
  }
  byName.link(&entry, parent, side);
}

}  // namespace nOXDIAG100
