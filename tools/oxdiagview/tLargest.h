#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace oxdiagview {

// The few largest of very many, the largest first. Of equal ones the first that came is kept.
template <class tItem>
class tLargest {
 public:
  explicit tLargest(size_t most) : most(most) {}

  // Whether add() would keep an item of this size.
  bool takes(long long size) const { return items.size() < most || items.back().first < size; }

  void add(long long size, tItem item) {
    if (!takes(size)) return;
    auto const isSmaller = [](long long wanted, auto const& other) { return wanted > other.first; };
    auto const place = std::upper_bound(items.begin(), items.end(), size, isSmaller);
    items.insert(place, {size, std::move(item)});
    if (items.size() > most) items.pop_back();
  }

  std::vector<std::pair<long long, tItem>> const& getItems() const { return items; }

 private:
  size_t const most;
  std::vector<std::pair<long long, tItem>> items;
};

}  // namespace oxdiagview
