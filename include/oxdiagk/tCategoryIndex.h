#pragma once

#include "compiler/types.h"
#include "oxdiagk/api.h"
#include "stl/tree.h"

namespace nOXDIAG100 {

// The links beneath tCategoryTable: entries by name, without values and without memory of its own.
// It grows by single links: no entry moves, and nothing is ever laid out anew. Zeros are an empty
// index.
//
// A look-up hashes the name and follows the digits of the hash: O(log n) steps, however many names
// begin alike, and hardly ever a comparison with another name than the wanted one. The order of the
// names is kept beside that for the thread that adds entries: O(log n) comparisons for each.
//
// find() may be called on any number of threads at any IRQL at which the names may be read, while
// another thread adds entries: an entry is complete before it can be found. Everything else is for
// one thread at a time, and giveUp for an index in which nobody looks any more.
class OXDIAG_API tCategoryIndex {
 public:
  static constexpr u32 kBranches = 4;

  // Belongs to whoever adds it, and stays in its place as long as it is in the index.
  class tEntry : public _STL::tree_node {
   public:
    // `name` stays as it is as long as the entry is in the index.
    explicit tEntry(char const* name) : name(name) {}

    char const* getName() const { return name; }

   private:
    friend class tCategoryIndex;

    u64 hash = 0;
    tEntry* branches[kBranches] = {};  // by the digit of the hash behind those that led here
    char const* const name;
  };

  // `secret` takes part in every hash, so that names cannot be chosen of which one look-up passes
  // many: any number that is hard to guess.
  explicit tCategoryIndex(u64 secret) : secret(secret) {}
  tCategoryIndex(tCategoryIndex const&) = delete;
  tCategoryIndex& operator=(tCategoryIndex const&) = delete;

  // The entry of this name; null when there is none.
  tEntry* find(char const* name) const;

  // Adds an entry of a name that is not in the index.
  void add(tEntry& entry);

  // The first entry in the order of strcmp, and the one behind `entry`; null at the end.
  tEntry* first() const { return static_cast<tEntry*>(byName.first()); }
  static tEntry* next(tEntry& entry) { return static_cast<tEntry*>(_STL::tree::next(&entry)); }

  // Empties the index and moves the entries to `entries`, an empty tree. Each may be added again
  // when it has been taken out of that.
  void giveUp(_STL::tree& entries);

 private:
  static constexpr u32 kRoots = 64;

  u64 hashOf(char const* name) const;
  void addByName(tEntry& entry);

  u64 secret;
  tEntry* roots[kRoots] = {};  // by the first digits of the hash
  _STL::tree byName;
};

}  // namespace nOXDIAG100
