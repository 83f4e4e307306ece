#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "stl/tree.h"

namespace {

// A tree of the numbers below a limit that knows nothing of balance: it only finds places. The
// number of a node is its place in the array.
class tNumberTree {
 public:
  explicit tNumberTree(size_t limit) : nodes_(limit) {}

  void insert(size_t number) {
    _STL::tree_node* parent = nullptr;
    u32 side = _STL::tree::kBefore;
    for (_STL::tree_node* at = tree.root(); at != nullptr; at = at->child[side]) {
      parent = at;
      side = number < numberOf(at) ? _STL::tree::kBefore : _STL::tree::kBehind;
    }
    nodes_[number] = _STL::tree_node();
    tree.link(&nodes_[number], parent, side);
  }

  void erase(size_t number) { tree.unlink(&nodes_[number]); }

  size_t numberOf(_STL::tree_node const* node) const {
    return static_cast<size_t>(node - nodes_.data());
  }

  std::vector<size_t> inOrder() const {
    std::vector<size_t> numbers;
    for (_STL::tree_node* at = tree.first(); at != nullptr; at = _STL::tree::next(at)) {
      numbers.push_back(numberOf(at));
    }
    return numbers;
  }

  _STL::tree tree;

 private:
  std::vector<_STL::tree_node> nodes_;
};

// Height of a well-formed subtree; every broken rule is a test failure.
u32 checkedHeight(_STL::tree_node const* node, _STL::tree_node const* parent) {
  if (node == nullptr) {
    return 0;
  }
  EXPECT_EQ(node->parent, parent);
  u32 const before = checkedHeight(node->child[0], node);
  u32 const behind = checkedHeight(node->child[1], node);
  EXPECT_LE(std::max(before, behind) - std::min(before, behind), 1u) << "out of balance";
  EXPECT_EQ(node->height, std::max(before, behind) + 1);
  return node->height;
}

void expectSound(tNumberTree const& numbers, std::vector<size_t> const& wanted) {
  checkedHeight(numbers.tree.root(), nullptr);
  ASSERT_EQ(numbers.inOrder(), wanted);
  ASSERT_EQ(numbers.tree.size(), wanted.size());
}

double heightLimit(size_t size) {
  return 1.45 * std::log2(static_cast<double>(size + 2));
}

}  // namespace

TEST(StlTreeShape, EveryOrderOfSevenInsertsAndEveryFirstRemovalStaysBalanced) {
  std::array<size_t, 7> order = {0, 1, 2, 3, 4, 5, 6};
  do {
    for (size_t removed : order) {
      tNumberTree numbers(order.size());
      for (size_t number : order) {
        numbers.insert(number);
      }
      std::vector<size_t> wanted = {0, 1, 2, 3, 4, 5, 6};
      expectSound(numbers, wanted);
      numbers.erase(removed);
      std::erase(wanted, removed);
      expectSound(numbers, wanted);
      ASSERT_FALSE(HasFailure());
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(StlTreeShape, EveryOrderOfSixRemovalsStaysBalanced) {
  std::array<size_t, 6> order = {0, 1, 2, 3, 4, 5};
  do {
    tNumberTree numbers(order.size());
    std::vector<size_t> wanted = {0, 1, 2, 3, 4, 5};
    for (size_t number : wanted) {
      numbers.insert(number);
    }
    for (size_t number : order) {
      numbers.erase(number);
      std::erase(wanted, number);
      expectSound(numbers, wanted);
    }
    ASSERT_FALSE(HasFailure());
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(StlTreeShape, AscendingAndDescendingInsertsStayLow) {
  constexpr size_t kNumbers = 20000;
  tNumberTree ascending(kNumbers);
  tNumberTree descending(kNumbers);
  for (size_t number = 0; number < kNumbers; ++number) {
    ascending.insert(number);
    descending.insert(kNumbers - 1 - number);
  }
  EXPECT_LE(checkedHeight(ascending.tree.root(), nullptr), heightLimit(kNumbers));
  EXPECT_LE(checkedHeight(descending.tree.root(), nullptr), heightLimit(kNumbers));
}

TEST(StlTreeShape, RandomInsertsAndRemovalsStayBalanced) {
  constexpr size_t kNumbers = 300;
  std::mt19937 random(20240611);
  tNumberTree numbers(kNumbers);
  std::vector<size_t> wanted;
  for (u32 step = 0; step < 20000; ++step) {
    size_t const number = random() % kNumbers;
    auto const place = std::lower_bound(wanted.begin(), wanted.end(), number);
    if (place != wanted.end() && *place == number) {
      numbers.erase(number);
      wanted.erase(place);
    } else {
      numbers.insert(number);
      wanted.insert(place, number);
    }
    expectSound(numbers, wanted);
    ASSERT_FALSE(HasFailure()) << "step " << step;
  }
}

TEST(StlTreeShape, DismantlingHandsOutEveryNodeOnce) {
  constexpr size_t kNumbers = 100;
  tNumberTree numbers(kNumbers);
  for (size_t number = 0; number < kNumbers; ++number) {
    numbers.insert(number * 37 % kNumbers);
  }
  std::vector<size_t> const wanted = numbers.inOrder();
  std::vector<size_t> taken;
  while (_STL::tree_node* node = numbers.tree.dismantle()) {
    EXPECT_EQ(node->child[0], nullptr);
    EXPECT_EQ(node->child[1], nullptr);
    taken.push_back(numbers.numberOf(node));
  }
  std::sort(taken.begin(), taken.end());
  EXPECT_EQ(wanted.size(), kNumbers);
  EXPECT_EQ(taken, wanted);
  EXPECT_EQ(numbers.tree.size(), 0u);
}
