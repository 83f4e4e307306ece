#include "oxdiagview/tRingFinder.h"

#include <algorithm>
#include <cstring>

#include "oxdiagk/tRecorderRing.h"

namespace oxdiagview {
namespace {

using nOXDIAG100::tRecorderRing;

constexpr std::string_view kSignature(tRecorderRing::kSignature, sizeof(tRecorderRing::kSignature));
constexpr uint64_t kMostCapacity = uint64_t{16} << 20;  // of a recorder
constexpr uint64_t kMostHead = 4096;                    // of a later layout
constexpr size_t kMostRings = 8;
constexpr size_t kMostCopies = 256;  // of rings; a dump has a few

// Not a chance text.
bool isRing(tRecorderRing const& head) {
  bool const isWhole = head.inverse == ~head.capacity && head.layout == tRecorderRing::kLayout;
  bool const hasSize = head.capacity != 0 && head.capacity <= kMostCapacity;
  return isWhole && hasSize && head.headSize >= sizeof(head) && head.headSize <= kMostHead;
}

// The oldest text stands behind the newest. What is missing between them ends a line.
std::string textOf(tRecorderRing const& head, std::string_view bytes) {
  if (head.written <= head.capacity) return std::string(bytes.substr(0, head.written));
  size_t const end = static_cast<size_t>(head.written % head.capacity);
  std::string text(bytes.substr(std::min(end, bytes.size())));
  if (bytes.size() < head.capacity && !text.empty()) text += '\n';
  return text.append(bytes.substr(0, end));
}

}  // namespace

void tRingFinder::feed(std::string_view bytes) {
  window += bytes;
  search(false);
}

void tRingFinder::finish() {
  search(true);
}

void tRingFinder::search(bool isAll) {
  for (;;) {
    size_t const place = window.find(kSignature, searched);
    if (place == window.npos) break;
    searched = place;
    if (!takeRing(place, isAll)) return;
    searched = place + kSignature.size();
  }
  size_t const rest = std::min(window.size(), kSignature.size() - 1);
  size_t const passed = std::max(window.size() - rest, std::min(searched, window.size()));
  passedOver += passed;
  window.erase(0, passed);
  searched = 0;
}

// False if the rest of it has not arrived.
bool tRingFinder::takeRing(size_t place, bool isAll) {
  size_t const there = window.size() - place;
  tRecorderRing head;
  if (there < sizeof(head)) return isAll;
  std::memcpy(&head, window.data() + place, sizeof(head));
  if (!isRing(head)) return true;
  if (there < head.headSize + head.capacity && !isAll) return false;
  std::string_view const bytes = std::string_view(window).substr(
      std::min<size_t>(place + head.headSize, window.size()), static_cast<size_t>(head.capacity));
  uint64_t const used = std::min<uint64_t>(head.written, head.capacity);
  uint64_t const missing = used - std::min<uint64_t>(used, bytes.size());
  tRing ring = {passedOver + place,
                head.address,
                head.headSize + head.capacity,
                head.capacity,
                head.written,
                missing,
                ""};
  tRing* const kept = copies < kMostCopies ? placeOf(ring) : nullptr;
  if (kept == nullptr) return true;
  ++copies;
  ring.text = textOf(head, bytes);
  *kept = std::move(ring);
  return true;
}

// Where a ring is to be kept; null for one that is not wanted. Of two copies of the same age the
// one of which more is there is.
tRingFinder::tRing* tRingFinder::placeOf(tRing const& ring) {
  for (tRing& other : rings) {
    if (other.address != ring.address) continue;
    bool const isNewer = ring.written > other.written;
    bool const isFuller = ring.written == other.written && ring.missing < other.missing;
    return isNewer || isFuller ? &other : nullptr;
  }
  return rings.size() < kMostRings ? &rings.emplace_back() : nullptr;
}

}  // namespace oxdiagview
