#pragma once

// The balanced tree beneath `_STL::map`: links only, no keys and no memory. It is told where a node
// goes and keeps the heights of the two sides of every node within one of each other (an AVL
// tree), so a tree of n nodes is at most 1.45 log2(n + 2) levels high.
//
// Nothing here allocates, fails, recurses or locks; any IRQL at which the nodes may be touched.

#include "compiler/types.h"
#include "stl/utility.h"

namespace _STL {

// The links of one node.
struct tree_node {
  tree_node* parent = nullptr;
  tree_node* child[2] = {nullptr, nullptr};  // what stands before and behind this node
  u32 height = 1;                            // levels from here down
};

// The root of a tree and all that changes its shape. Nodes belong to the caller, who hands them in
// with `link` and has them back after `unlink`.
class tree {
 public:
  static constexpr u32 kBefore = 0;
  static constexpr u32 kBehind = 1;

  constexpr tree() noexcept = default;

  tree_node* root() const noexcept { return root_; }
  size_t size() const noexcept { return size_; }

  // The first node in order; null when there is none.
  tree_node* first() const noexcept {
    return root_ == nullptr ? nullptr : outermost(root_, kBefore);
  }

  // The node that follows in order; null behind the last.
  static tree_node* next(tree_node* node) noexcept;

  // Hangs a new node, never linked before, under `parent` on `side`, where there is none yet; a
  // null parent makes it the root of an empty tree.
  void link(tree_node* node, tree_node* parent, u32 side) noexcept;

  // Takes a node of this tree out. No other node changes its address or its place in the order.
  void unlink(tree_node* node) noexcept;

  // Takes out some node without balancing, for a tree that is given up: until it returns null, each
  // call hands out another node, children before their parents.
  tree_node* dismantle() noexcept;

  void swap(tree& other) noexcept {
    _STL::swap(root_, other.root_);
    _STL::swap(size_, other.size_);
  }

 private:
  static u32 heightOf(tree_node const* node) noexcept { return node == nullptr ? 0 : node->height; }
  static tree_node* outermost(tree_node* node, u32 side) noexcept;
  static void hang(tree_node* parent, u32 side, tree_node* node) noexcept;
  static void measure(tree_node* node) noexcept;

  void replace(tree_node const* node, tree_node* by) noexcept;
  tree_node* replaceByHeir(tree_node* node) noexcept;
  void rotate(tree_node* sinking, u32 side) noexcept;
  void level(tree_node* node, u32 side) noexcept;
  void balanceFrom(tree_node* node) noexcept;

  tree_node* root_ = nullptr;
  size_t size_ = 0;
};

inline tree_node* tree::next(tree_node* node) noexcept {
  if (node->child[kBehind] != nullptr) {
    return outermost(node->child[kBehind], kBefore);
  }
  while (node->parent != nullptr && node->parent->child[kBehind] == node) {
    node = node->parent;
  }
  return node->parent;
}

inline void tree::link(tree_node* node, tree_node* parent, u32 side) noexcept {
  if (parent == nullptr) {
    root_ = node;
  } else {
    hang(parent, side, node);
  }
  ++size_;
  balanceFrom(parent);
}

inline void tree::unlink(tree_node* node) noexcept {
  tree_node* changed = node->parent;
  if (node->child[kBefore] != nullptr && node->child[kBehind] != nullptr) {
    changed = replaceByHeir(node);
  } else {
    replace(node, node->child[node->child[kBefore] == nullptr ? kBehind : kBefore]);
  }
  --size_;
  balanceFrom(changed);
}

inline tree_node* tree::dismantle() noexcept {
  tree_node* node = root_;
  if (node == nullptr) {
    return nullptr;
  }
  while (node->child[kBefore] != nullptr || node->child[kBehind] != nullptr) {
    node = node->child[node->child[kBefore] == nullptr ? kBehind : kBefore];
  }
  replace(node, nullptr);
  --size_;
  return node;
}

inline tree_node* tree::outermost(tree_node* node, u32 side) noexcept {
  while (node->child[side] != nullptr) {
    node = node->child[side];
  }
  return node;
}

inline void tree::hang(tree_node* parent, u32 side, tree_node* node) noexcept {
  parent->child[side] = node;
  if (node != nullptr) {
    node->parent = parent;
  }
}

inline void tree::measure(tree_node* node) noexcept {
  u32 const before = heightOf(node->child[kBefore]);
  u32 const behind = heightOf(node->child[kBehind]);
  node->height = 1 + (before < behind ? behind : before);
}

inline void tree::replace(tree_node const* node, tree_node* by) noexcept {
  tree_node* const parent = node->parent;
  if (parent != nullptr) {
    hang(parent, parent->child[kBefore] == node ? kBefore : kBehind, by);
  } else {
    root_ = by;
    if (by != nullptr) {
      by->parent = nullptr;
    }
  }
}

// The next node in order has nothing before it, so it can leave its place and take the other's,
// with the height that this had. Returns the lowest node whose height may have changed.
inline tree_node* tree::replaceByHeir(tree_node* node) noexcept {
  tree_node* const heir = outermost(node->child[kBehind], kBefore);
  tree_node* const changed = heir->parent == node ? heir : heir->parent;
  replace(heir, heir->child[kBehind]);
  hang(heir, kBefore, node->child[kBefore]);
  hang(heir, kBehind, node->child[kBehind]);
  replace(node, heir);
  heir->height = node->height;
  return changed;
}

// The child on `side` rises into the place of its parent, which sinks to the other side.
inline void tree::rotate(tree_node* sinking, u32 side) noexcept {
  tree_node* const rising = sinking->child[side];
  replace(sinking, rising);
  hang(sinking, side, rising->child[1 - side]);
  hang(rising, 1 - side, sinking);
  measure(sinking);
  measure(rising);
}

// `node` is two levels higher on `side`.
inline void tree::level(tree_node* node, u32 side) noexcept {
  tree_node* const heavy = node->child[side];
  if (heightOf(heavy->child[1 - side]) > heightOf(heavy->child[side])) {
    rotate(heavy, 1 - side);
  }
  rotate(node, side);
}

// Up to the first node that is as high as before: nothing above it has changed.
inline void tree::balanceFrom(tree_node* node) noexcept {
  for (; node != nullptr; node = node->parent) {
    u32 const former = node->height;
    u32 const before = heightOf(node->child[kBefore]);
    u32 const behind = heightOf(node->child[kBehind]);
    if (before > behind + 1 || behind > before + 1) {
      level(node, before > behind ? kBefore : kBehind);
      node = node->parent;
    } else {
      measure(node);
    }
    if (node->height == former) {
      return;
    }
  }
}

}  // namespace _STL
