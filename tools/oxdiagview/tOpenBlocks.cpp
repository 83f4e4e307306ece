#include "oxdiagview/tOpenBlocks.h"

#include <algorithm>
#include <iterator>

#include "oxdiagview/jsonText.h"

namespace oxdiagview {

void setPlace(std::string& place, tRecord const& record) {
  place = record.file;
  if (!record.sourceLine) return;
  if (!place.empty()) place += ':';
  appendNumber(place, *record.sourceLine);
}

std::string placeOf(tRecord const& record) {
  std::string place;
  setPlace(place, record);
  return place;
}

std::string_view tOpenBlocks::nameOf(tRecord const& record) {
  return record.function.substr(0, kMostName);
}

void tOpenBlocks::begin(tRecord const& record) {
  uint32_t const id = record.thread.value_or(0);
  if (threads.size() >= kMostThreads && !threads.contains(id)) forgetOldThreads();
  tThread& thread = threads[id];
  if (thread.size() >= kMostDepth) thread.erase(thread.begin());
  std::string place = placeOf(record);
  place.resize(std::min(place.size(), kMostName));
  thread.push_back({std::string(nameOf(record)), std::move(place), record.number, record.time});
}

// Half of them, so that it is not done for each.
void tOpenBlocks::forgetOldThreads() {
  std::vector<uint64_t> numbers;
  for (auto const& [id, thread] : threads) numbers.push_back(thread.back().number);
  auto const middle = numbers.begin() + static_cast<ptrdiff_t>(numbers.size() / 2);
  std::nth_element(numbers.begin(), middle, numbers.end());
  std::erase_if(threads, [=](auto const& one) { return one.second.back().number <= *middle; });
}

tOpenBlocks::tBlock const* tOpenBlocks::getInnermost(uint32_t thread) const {
  auto const found = threads.find(thread);
  return found == threads.end() ? nullptr : &found->second.back();
}

tOpenBlocks::tThread tOpenBlocks::end(tRecord const& record) {
  tThread ended;
  auto const found = threads.find(record.thread.value_or(0));
  if (found == threads.end()) return ended;
  tThread& thread = found->second;
  auto const block = std::find_if(thread.rbegin(), thread.rend(), [&](tBlock const& candidate) {
    return candidate.name == nameOf(record);
  });
  if (block == thread.rend()) return ended;
  auto const first = std::prev(block.base());
  ended.assign(std::move_iterator(first), std::move_iterator(thread.end()));
  thread.erase(first, thread.end());
  if (thread.empty()) threads.erase(found);
  return ended;
}

}  // namespace oxdiagview
