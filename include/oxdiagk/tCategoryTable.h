#pragma once

#include "compiler/compiler.h"
#include "oxdiagk/tCategoryIndex.h"
#include "stl/failure_state.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

// Values by name, found without a lock while another thread adds some. Zeros are an empty table.
//
// find() may be called on any number of threads at any IRQL at which the name may be read: what is
// in the table stays where it is, and an entry is complete before it can be found. Everything else
// is for one thread at a time; removeCopies and the destructor, for a table in which nobody looks
// any more. Look-up and addition take O(log n) steps.
//
// Failure: on exhausted memory an addition returns null, leaves everything as it was and makes
// hasFailed true (see stl/failure_state.h).
template <class V>
class tCategoryTable : public _STL::failure_state {
 public:
  struct tEntry : tCategoryIndex::tEntry {
    tEntry(char const* name, bool isCopy, V const& value)
        : tCategoryIndex::tEntry(name), isCopy(isCopy), value(value) {}

    bool const isCopy;  // of the name: the table frees it
    V value;
  };

  explicit tCategoryTable(u64 secret) : index(secret) {}
  ~tCategoryTable() {
    removeIf([](tEntry const&) { return true; });
  }
  tCategoryTable(tCategoryTable const&) = delete;
  tCategoryTable& operator=(tCategoryTable const&) = delete;

  // The entry of this name; null when there is none.
  tEntry* find(char const* name) const { return static_cast<tEntry*>(index.find(name)); }

  // Adds an entry of a name that is not in the table and outlives it.
  tEntry* add(char const* name, V const& value) { return addEntry(name, false, value); }

  // The same under a copy of the name.
  tEntry* addCopy(char const* name, V const& value) {
    size_t const size = nCompiler::textLength(name) + 1;
    char* const copy = _STL::allocateFor<char>(size, kMemLongLived);
    if (copy != nullptr) nCompiler::copyBytes(copy, name, size);
    tEntry* const entry = addEntry(copy, true, value);
    if (entry == nullptr) _memDelete(copy);
    return entry;
  }

  // Takes out what addCopy added.
  void removeCopies() {
    removeIf([](tEntry const& entry) { return entry.isCopy; });
  }

  // The first entry in the order of strcmp, and the one behind `entry`; null at the end.
  tEntry* first() const { return static_cast<tEntry*>(index.first()); }
  static tEntry* next(tEntry& entry) { return static_cast<tEntry*>(tCategoryIndex::next(entry)); }

 private:
  // A null name is one that could not be copied.
  tEntry* addEntry(char const* name, bool isCopy, V const& value) {
    tEntry* const entry = name == nullptr ? nullptr : _STL::allocateFor<tEntry>(1, kMemLongLived);
    if (entry == nullptr) {
      fail();
      return nullptr;
    }
    index.add(*_STL::construct(entry, name, isCopy, value));
    return entry;
  }

  template <class Predicate>
  void removeIf(Predicate isToGo) {
    _STL::tree entries;
    index.giveUp(entries);
    while (_STL::tree_node* const node = entries.dismantle()) {
      tEntry* const entry = static_cast<tEntry*>(node);
      if (!isToGo(*entry)) {
        index.add(*entry);
        continue;
      }
      if (entry->isCopy) _memDelete(const_cast<char*>(entry->getName()));
      _memDelete(entry);
    }
  }

  tCategoryIndex index;
};

}  // namespace nOXDIAG100
