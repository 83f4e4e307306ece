#pragma once

// An ordered table from keys to values.
//
//     _STL::map<u32, tConfigurable*> table;
//     if (!table.insert(handle, instance)) { ... key taken, or memory exhausted ... }
//     if (tConfigurable** found = table.find(handle)) { ... }
//     for (auto& entry : table) { ... entry.key ... entry.value ... }

#include "stl/failure_state.h"
#include "stl/memory.h"
#include "stl/tree.h"
#include "stl/utility.h"

namespace _STL {

// Entries in ascending order of their keys, no two with equal keys, each in a node of its own from
// _memNewUsingCRT with the flags value `Flags`; insert, find and erase take O(log n) steps. An
// empty map holds no memory. Entries never move: pointers and iterators to one are good until that
// entry is taken out, also when the map is moved or swapped.
//
// Less is a class without state whose `bool operator()(K const&, K const&) const noexcept` is a
// strict order. Keys are equal when neither stands before the other.
// Keys are copied, values copied or moved: a K or V whose copy can fail has a `hasFailed` function,
// see `reports_failure`. A failed copy counts as exhausted memory.
// Failure: on exhausted memory an operation returns false, leaves the old content untouched and
// makes hasFailed true (see stl/failure_state.h). Copy construction and copy assignment tell by
// hasFailed alone; after a failed copy construction the map is empty.
// IRQL <= DISPATCH_LEVEL in long-lived memory, <= APC_LEVEL in scratch memory, as far as keys and
// values allow. Threads that share a map, one of them writing, must lock.
template <class K, class V, class Less = less<K>, u32 Flags = kMemoryLongLived>
class map : public failure_state {
 public:
  // What an iterator shows.
  struct entry {
    K const key;
    V value;
  };

 private:
  struct node : tree_node {
    node(K&& key, V&& value) noexcept : item{_STL::move(key), _STL::move(value)} {}
    entry item;
  };

  // A position in the order: an entry, or the end behind the last. Item is entry or entry const.
  template <class Item>
  class position {
   public:
    constexpr position() noexcept = default;

    // The entry; not for the end.
    Item& operator*() const noexcept { return static_cast<node*>(node_)->item; }
    Item* operator->() const noexcept { return &**this; }

    // The entry with the next larger key, or the end.
    position& operator++() noexcept {
      node_ = tree::next(node_);
      return *this;
    }

    friend bool operator==(position left, position right) noexcept {
      return left.node_ == right.node_;
    }

   private:
    friend class map;
    explicit position(tree_node* at) noexcept : node_(at) {}

    tree_node* node_ = nullptr;
  };

 public:
  using iterator = position<entry>;
  using const_iterator = position<entry const>;

  constexpr map() noexcept = default;

  // Copies every entry; hasFailed tells whether this copy could be made.
  map(map const& other) noexcept;

  // Takes the entries and the remembered failure; `other` is left empty.
  map(map&& other) noexcept : failure_state(_STL::move(other)) { tree_.swap(other.tree_); }
  ~map() { clear(); }

  // Copies every entry, or keeps the old ones and remembers the failure.
  map& operator=(map const& other) noexcept;

  // Takes the entries of `other`, which is left empty; adds its remembered failure to the own one.
  map& operator=(map&& other) noexcept;

  // Exchanges content and remembered failures.
  void swap(map& other) noexcept;

  size_t size() const noexcept { return tree_.size(); }
  bool empty() const noexcept { return tree_.size() == 0; }

  iterator begin() noexcept { return iterator(tree_.first()); }
  iterator end() noexcept { return iterator(); }
  const_iterator begin() const noexcept { return const_iterator(tree_.first()); }
  const_iterator end() const noexcept { return const_iterator(); }

  // The value under `key`, null when there is none.
  V* find(K const& key) noexcept { return valueAt(seek(key)); }
  V const* find(K const& key) const noexcept { return valueAt(seek(key)); }
  bool contains(K const& key) const noexcept { return seek(key).found != nullptr; }

  // Adds an entry. False when nothing was added: either the key is taken (contains(key) is true,
  // its value is unchanged and nothing counts as failed) or memory is exhausted (contains(key) is
  // false). Then a value given to be moved is untouched.
  bool insert(K const& key, V const& value) noexcept requires(relocatable<K>&& relocatable<V>);
  bool insert(K const& key, V&& value) noexcept requires(relocatable<K>&& relocatable<V>);

  // Takes out the entry under `key`; false when there is none. Cannot fail otherwise.
  bool erase(K const& key) noexcept;

  // Takes out all entries.
  void clear() noexcept;

 private:
  // Where a key stands, or the free place where it would stand.
  struct place {
    tree_node* found;
    tree_node* parent;
    u32 side;
  };

  static V* valueAt(place const& at) noexcept {
    return at.found == nullptr ? nullptr : &static_cast<node*>(at.found)->item.value;
  }
  static K const& keyOf(tree_node const* at) noexcept {
    return static_cast<node const*>(at)->item.key;
  }
  static void release(tree_node* unlinked) noexcept;

  place seek(K const& key) const noexcept;

  tree tree_;
};

template <class K, class V, class Less, u32 Flags>
map<K, V, Less, Flags>::map(map const& other) noexcept : failure_state() {
  for (entry const& item : other) {
    if (!insert(item.key, item.value)) {
      clear();
      return;
    }
  }
}

template <class K, class V, class Less, u32 Flags>
map<K, V, Less, Flags>& map<K, V, Less, Flags>::operator=(map const& other) noexcept {
  if (this != &other) {
    map copy(other);
    if (copy.hasFailed()) {
      fail();
    } else {
      tree_.swap(copy.tree_);
    }
  }
  return *this;
}

template <class K, class V, class Less, u32 Flags>
map<K, V, Less, Flags>& map<K, V, Less, Flags>::operator=(map&& other) noexcept {
  map taken(_STL::move(other));
  if (taken.hasFailed()) {
    fail();
  }
  tree_.swap(taken.tree_);
  return *this;
}

template <class K, class V, class Less, u32 Flags>
void map<K, V, Less, Flags>::swap(map& other) noexcept {
  tree_.swap(other.tree_);
  swapFailure(other);
}

template <class K, class V, class Less, u32 Flags>
bool map<K, V, Less, Flags>::insert(K const& key, V const& value) noexcept
    requires(relocatable<K>&& relocatable<V>) {
  if (contains(key)) {
    return false;
  }
  V copy(value);
  return constructionFailed(copy) ? fail() : insert(key, _STL::move(copy));
}

template <class K, class V, class Less, u32 Flags>
bool map<K, V, Less, Flags>::insert(K const& key, V&& value) noexcept
    requires(relocatable<K>&& relocatable<V>) {
  place const at = seek(key);
  if (at.found != nullptr) {
    return false;
  }
  K copy(key);
  node* const storage = constructionFailed(copy) ? nullptr : allocateFor<node>(1, Flags);
  if (storage == nullptr) {
    return fail();
  }
  _STL::construct(storage, _STL::move(copy), _STL::move(value));
  tree_.link(storage, at.parent, at.side);
  return true;
}

template <class K, class V, class Less, u32 Flags>
bool map<K, V, Less, Flags>::erase(K const& key) noexcept {
  tree_node* const found = seek(key).found;
  if (found == nullptr) {
    return false;
  }
  tree_.unlink(found);
  release(found);
  return true;
}

template <class K, class V, class Less, u32 Flags>
void map<K, V, Less, Flags>::clear() noexcept {
  while (tree_node* taken = tree_.dismantle()) {
    release(taken);
  }
}

template <class K, class V, class Less, u32 Flags>
void map<K, V, Less, Flags>::release(tree_node* unlinked) noexcept {
  _STL::destroy(static_cast<node*>(unlinked));
  _memDelete(unlinked);
}

template <class K, class V, class Less, u32 Flags>
typename map<K, V, Less, Flags>::place map<K, V, Less, Flags>::seek(K const& key) const noexcept {
  place at = {tree_.root(), nullptr, tree::kBefore};
  while (at.found != nullptr) {
    bool const before = Less()(key, keyOf(at.found));
    if (!before && !Less()(keyOf(at.found), key)) {
      break;
    }
    at = {at.found->child[before ? tree::kBefore : tree::kBehind], at.found,
          before ? tree::kBefore : tree::kBehind};
  }
  return at;
}

}  // namespace _STL
