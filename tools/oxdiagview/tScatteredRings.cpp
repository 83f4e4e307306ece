#include "oxdiagview/tScatteredRings.h"

#include <algorithm>
#include <cstring>

namespace oxdiagview {
namespace {

constexpr uint64_t kPageMask = tScatteredRings::kPageSize - 1;
constexpr size_t kEntries = 512;  // of a page table
constexpr uint64_t kPresent = 1;
constexpr uint64_t kFrameMask = 0x000F'FFFF'FFFF'F000;

uint64_t entryAt(std::string_view table, size_t index) {
  uint64_t entry = 0;
  std::memcpy(&entry, table.data() + index * sizeof(entry), sizeof(entry));
  return entry;
}

bool isPresent(uint64_t entry) {
  return (entry & kPresent) != 0;
}

}  // namespace

tScatteredRings::tScatteredRings(std::vector<tRingFinder::tRing> const& rings) : rings(rings) {
  for (size_t number = 0; number < rings.size(); ++number) {
    tRingFinder::tRing const& ring = rings[number];
    uint64_t const within = ring.offset & kPageMask;
    uint64_t const pages = (within + ring.size + kPageMask) / kPageSize;
    if (within != (ring.address & kPageMask) || pages < 2) continue;
    size_t const entry = static_cast<size_t>(ring.address / kPageSize % kEntries);
    scattered.push_back({number, ring.offset - within, entry, static_cast<size_t>(pages), {}});
  }
}

void tScatteredRings::findTable(std::string_view page) {
  for (tScattered& one : scattered) {
    uint64_t const first = entryAt(page, one.entry);
    bool const isTable = isPresent(first) && (first & kFrameMask) == one.head;
    if (!isTable || one.tables.size() == kMostTables) continue;
    one.tables.push_back(placesIn(page, one));
    for (uint64_t const place : one.tables.back()) wanted[place];
  }
}

tScatteredRings::tPlaces tScatteredRings::placesIn(std::string_view table,
                                                   tScattered const& one) const {
  tPlaces places;
  size_t const count = std::min(one.pages, kEntries - one.entry);
  for (size_t index = 0; index < count; ++index) {
    uint64_t const entry = entryAt(table, one.entry + index);
    if (!isPresent(entry)) break;
    places.push_back(entry & kFrameMask);
  }
  return places;
}

void tScatteredRings::takePage(uint64_t place, std::string_view page) {
  auto const found = wanted.find(place);
  if (found != wanted.end()) found->second = page;
}

// Up to the first page that is not there.
std::string tScatteredRings::bytesOf(tPlaces const& places) const {
  std::string bytes;
  for (uint64_t const place : places) {
    std::string const& page = wanted.at(place);
    if (page.empty()) break;
    bytes += page;
  }
  return bytes;
}

std::string tScatteredRings::bytesOf(tScattered const& one) const {
  std::string most;
  for (tPlaces const& places : one.tables) {
    std::string bytes = bytesOf(places);
    if (bytes.size() > most.size()) most = std::move(bytes);
  }
  return most;
}

std::vector<tRingFinder::tRing> tScatteredRings::join() const {
  std::vector<tRingFinder::tRing> joined = rings;
  for (tScattered const& one : scattered) {
    tRingFinder finder;
    finder.feed(bytesOf(one));
    finder.finish();
    for (tRingFinder::tRing const& ring : finder.getRings()) {
      if (ring.address != rings[one.ring].address) continue;
      joined[one.ring] = ring;
      joined[one.ring].offset = rings[one.ring].offset;
    }
  }
  return joined;
}

}  // namespace oxdiagview
