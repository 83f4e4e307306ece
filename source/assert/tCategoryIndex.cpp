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

u64 wordAt(char const* bytes) {
  u64 word;
  __builtin_memcpy(&word, bytes, sizeof(word));
  return word;
}

// The last eight bytes, or all of fewer.
u64 lastWordOf(char const* name, size_t length) {
  if (length >= sizeof(u64)) return wordAt(name + length - sizeof(u64));
  u64 word = 0;
  for (size_t index = 0; index < length; ++index) word = word << 8 | static_cast<u8>(name[index]);
  return word;
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
    state = mix(state ^ wordAt(name + index), kMultiplier);
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
