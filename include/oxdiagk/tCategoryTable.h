#pragma once

#include "ntos/types.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// Values by name, found without a lock while another thread adds some. Zeros are an empty table.
//
// find() may be called on any number of threads at any IRQL at which the name may be read: what is
// in the table stays where it is, and an entry is complete before it can be found. Everything else
// is for one thread at a time; take() and the destructor, for a table that nobody looks at any
// more.
template <class V>
class tCategoryTable {
 public:
  struct tEntry {
    char const* const name;  // not owned
    V value;
    tEntry* nextInChain;
    tEntry* nextByName;
  };

  tCategoryTable() = default;
  ~tCategoryTable() {
    while (byName != nullptr) take(*byName);
  }
  tCategoryTable(tCategoryTable const&) = delete;
  tCategoryTable& operator=(tCategoryTable const&) = delete;

  // The entry of this name; null when there is none.
  tEntry* find(char const* name) const {
    tEntry* entry = __atomic_load_n(&chains[chainOf(name)], __ATOMIC_ACQUIRE);
    while (entry != nullptr && __builtin_strcmp(entry->name, name) != 0) entry = entry->nextInChain;
    return entry;
  }

  // Adds an entry of a name that is not in the table. Null when memory is exhausted.
  tEntry* add(char const* name, V const& value) {
    i32 status = 0;
    void* const memory = _memNewUsingCRT(sizeof(tEntry), kMemLongLived, status);
    if (memory == nullptr) return nullptr;
    tEntry** const place = findPlace(name);
    tEntry*& chain = chains[chainOf(name)];
    auto* const entry = new (memory) tEntry{name, value, chain, *place};
    *place = entry;
    __atomic_store_n(&chain, entry, __ATOMIC_RELEASE);
    return entry;
  }

  // Takes an entry out and frees it.
  void take(tEntry& entry) {
    *findPlace(entry.name) = entry.nextByName;
    tEntry** link = &chains[chainOf(entry.name)];
    while (*link != &entry) link = &(*link)->nextInChain;
    *link = entry.nextInChain;
    _memDelete(&entry);
  }

  // The first entry in the order of strcmp; `nextByName` leads on.
  tEntry* first() const { return byName; }

 private:
  static constexpr u32 kChainCount = 64;

  // By the first characters: names are short and most differ there, and a lookup is what a contract
  // costs.
  static u32 chainOf(char const* name) {
    u32 const begin = static_cast<u8>(name[0]);
    return (begin + (begin == 0 ? 0 : static_cast<u8>(name[1]) * 5u)) % kChainCount;
  }

  // The link that leads to the first entry not before `name`.
  tEntry** findPlace(char const* name) {
    tEntry** place = &byName;
    while (*place != nullptr && __builtin_strcmp((*place)->name, name) < 0) {
      place = &(*place)->nextByName;
    }
    return place;
  }

  tEntry* chains[kChainCount] = {};
  tEntry* byName = nullptr;
};

}  // namespace nOXDIAG100
