#include "oxdiagview/tOpenBlocks.h"

#include <algorithm>
#include <iterator>

namespace oxdiagview {

std::string placeOf(tRecord const& record) {
  std::string place(record.file);
  if (!record.sourceLine) return place;
  return place + (place.empty() ? "" : ":") + std::to_string(*record.sourceLine);
}

void tOpenBlocks::begin(tRecord const& record) {
  uint32_t const id = record.thread.value_or(0);
  if (threads.size() >= kMostThreads && !threads.contains(id)) threads.erase(threads.begin());
  tThread& thread = threads[id];
  if (thread.size() >= kMostDepth) thread.erase(thread.begin());
  thread.push_back({std::string(record.function), placeOf(record), record.number, record.time});
}

tOpenBlocks::tThread tOpenBlocks::end(tRecord const& record) {
  tThread ended;
  auto const found = threads.find(record.thread.value_or(0));
  if (found == threads.end()) return ended;
  tThread& thread = found->second;
  auto const block = std::find_if(thread.rbegin(), thread.rend(), [&](tBlock const& candidate) {
    return candidate.name == record.function;
  });
  if (block == thread.rend()) return ended;
  auto const first = std::prev(block.base());
  ended.assign(std::move_iterator(first), std::move_iterator(thread.end()));
  thread.erase(first, thread.end());
  return ended;
}

}  // namespace oxdiagview
