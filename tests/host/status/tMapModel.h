#pragma once

// What the status heap has to do, said with a map of its free fragments.

#include <iterator>
#include <map>

#include "ntos/types.h"

class tMapModel {
 public:
  static constexpr u32 kUnits = 1024;

  static constexpr u32 kNone = 0xFFFFFFFF;

  // The first unit of the block that goes out, or kNone. The search begins behind the rover, the
  // rover's fragment is looked at last, and the upper part of a fragment is handed out.
  u32 take(u32 units) {
    auto const wanted = find(units);
    if (wanted == fragments.end()) return kNone;
    rover = wanted == fragments.begin() ? kAnchor : std::prev(wanted)->first;
    wanted->second -= units;
    u32 const block = wanted->first + wanted->second;
    if (wanted->second == 0) fragments.erase(wanted);
    freeUnits -= units;
    ++allocatedBlocks;
    return block;
  }

  void give(u32 block, u32 units) {
    freeUnits += units;
    --allocatedBlocks;
    auto const next = fragments.lower_bound(block);
    rover = next == fragments.begin() ? kAnchor : std::prev(next)->first;
    auto const inserted = fragments.emplace_hint(next, block, units);
    joinWithNext(inserted);
    if (inserted != fragments.begin()) joinWithNext(std::prev(inserted));
  }

  // Whether a unit belongs to a free fragment.
  bool isFree(u32 unit) const {
    auto const next = fragments.upper_bound(unit);
    if (next == fragments.begin()) return false;
    auto const fragment = std::prev(next);
    return unit < fragment->first + fragment->second;
  }

  u32 getFreeUnits() const { return freeUnits; }
  u32 getFragments() const { return static_cast<u32>(fragments.size()); }
  u32 getAllocatedBlocks() const { return allocatedBlocks; }

  // In units from the anchor, which is 0.
  u32 getRover() const { return static_cast<u32>(rover + 1); }

 private:
  using tFragments = std::map<u32, u32>;  // first unit and length

  static constexpr i64 kAnchor = -1;

  tFragments::iterator find(u32 units) {
    auto const behindRover =
        rover == kAnchor ? fragments.begin() : fragments.upper_bound(static_cast<u32>(rover));
    for (auto i = behindRover; i != fragments.end(); ++i) {
      if (i->second >= units) return i;
    }
    for (auto i = fragments.begin(); i != behindRover; ++i) {
      if (i->second >= units) return i;
    }
    return fragments.end();
  }

  void joinWithNext(tFragments::iterator fragment) {
    auto const next = std::next(fragment);
    if (next == fragments.end() || fragment->first + fragment->second != next->first) return;
    fragment->second += next->second;
    fragments.erase(next);
  }

  tFragments fragments{{0, kUnits}};
  u32 freeUnits = kUnits;
  u32 allocatedBlocks = 0;
  i64 rover = kAnchor;
};
