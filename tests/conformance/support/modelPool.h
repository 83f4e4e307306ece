#pragma once

// What the status heap has to do, in the plainest way: one entry for each unit tells who has it.
// Free fragments are found by looking, so they need no list, no splitting and no merging. About a
// thousand steps for each operation.

#include "ntos/types.h"

class tModelPool {
 public:
  static constexpr u32 kUnits = 1024;
  static constexpr u32 kNone = 0xFFFFFFFF;

  constexpr tModelPool() = default;

  void clear() {
    for (u16& unit : owner) unit = kFree;
    rover = kAnchor;
    allocatedBlocks = 0;
  }

  static u32 unitsOf(u32 size) { return 1 + (size + 15) / 16; }

  // Returns the first unit of the block, or kNone. First fit from the fragment behind the rover,
  // the rover's fragment last; the block is the upper part.
  u32 take(u32 units) {
    u32 previous = rover;
    for (bool isLast = false; !isLast;) {
      u32 const fragment = behind(previous);
      isLast = fragment == rover;
      if (fragment != kAnchor && lengthOf(fragment) >= units) {
        u32 const block = fragment + lengthOf(fragment) - units;
        for (u32 unit = block; unit != block + units; ++unit)
          owner[unit] = static_cast<u16>(block + 1);
        rover = previous;
        ++allocatedBlocks;
        return block;
      }
      previous = fragment;
    }
    return kNone;
  }

  // The block that begins at this unit goes back. Whoever asks knows that it is one.
  void give(u32 block) {
    rover = before(block);
    for (u32 unit = block; unit != kUnits && owner[unit] == block + 1; ++unit) owner[unit] = kFree;
    --allocatedBlocks;
  }

  bool isBlock(u32 unit) const { return unit < kUnits && owner[unit] == unit + 1; }

  u32 countFreeUnits() const {
    u32 count = 0;
    for (u32 unit = 0; unit != kUnits; ++unit) count += owner[unit] == kFree ? 1 : 0;
    return count;
  }

  u32 countFragments() const {
    u32 count = 0;
    for (u32 unit = 0; unit != kUnits; ++unit) count += isFragment(unit) ? 1 : 0;
    return count;
  }

  u32 getAllocatedBlocks() const { return allocatedBlocks; }

  // As an offset in the arena in units: 0 is the anchor.
  u32 getRover() const { return rover == kAnchor ? 0 : rover + 1; }

 private:
  static constexpr u16 kFree = 0;
  static constexpr u32 kAnchor = kNone - 1;

  bool isFragment(u32 unit) const {
    return owner[unit] == kFree && (unit == 0 || owner[unit - 1] != kFree);
  }

  u32 lengthOf(u32 fragment) const {
    u32 end = fragment;
    while (end != kUnits && owner[end] == kFree) ++end;
    return end - fragment;
  }

  u32 behind(u32 fragment) const {
    for (u32 unit = fragment == kAnchor ? 0 : fragment + 1; unit != kUnits; ++unit) {
      if (isFragment(unit)) return unit;
    }
    return kAnchor;
  }

  u32 before(u32 block) const {
    for (u32 unit = block; unit != 0; --unit) {
      if (isFragment(unit - 1)) return unit - 1;
    }
    return kAnchor;
  }

  u16 owner[kUnits] = {};  // 1 + the first unit of the block, 0 for a free unit
  u32 rover = kAnchor;
  u32 allocatedBlocks = 0;
};
