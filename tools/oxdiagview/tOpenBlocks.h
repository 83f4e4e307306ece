#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "oxdiagview/tRecord.h"

namespace oxdiagview {

// The blocks that have begun and not ended, of each thread. Of a trace without thread ids all lines
// are of thread 0.
//
// Memory is bounded: of very deep blocks the outermost are forgotten, of very many threads those
// whose last blocks began first, and of a name its end.
class tOpenBlocks {
 public:
  struct tBlock {
    std::string name;
    std::string place;    // file and line
    uint64_t number = 0;  // of the line at which it began
    std::optional<uint64_t> time;
  };
  using tThread = std::vector<tBlock>;  // the innermost block is the last

  static constexpr size_t kMostThreads = 1024;
  static constexpr size_t kMostDepth = 64;
  static constexpr size_t kMostName = 200;  // bytes of a name or a place

  void begin(tRecord const& record);

  // The block that `record` ends, the innermost of its name, and behind it those within it, which
  // have lost their ends. Empty if no block of the name has begun.
  tThread end(tRecord const& record);

  // The name of a block as far as it is kept.
  static std::string_view nameOf(tRecord const& record);

  // The innermost open block of a thread; null if it has none. Valid until the next call.
  tBlock const* getInnermost(uint32_t thread) const;

  // Each thread has at least one block.
  std::unordered_map<uint32_t, tThread> const& getThreads() const { return threads; }

 private:
  void forgetOldThreads();

  std::unordered_map<uint32_t, tThread> threads;
};

// File and line of a record, such as a.cpp:17; empty if it shows neither.
std::string placeOf(tRecord const& record);

// The same into a string that has the memory for it from the line before.
void setPlace(std::string& place, tRecord const& record);

}  // namespace oxdiagview
