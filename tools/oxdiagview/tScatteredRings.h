#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "oxdiagview/tRingFinder.h"

namespace oxdiagview {

// Puts rings together whose pages lie apart, as in an image of physical memory, in which a byte's
// place is its physical address. Which pages a ring has tells the page table of which one entry, at
// the place that the ring's address gives, names the page where its head lies. What is behind the
// end of that table, 2 MiB of addresses at most, is not looked for. Any page may look like a table
// by chance, or because somebody wrote a text into it: of the first four that do, the one is taken
// of which most pages are there.
//
// The pages of the image are looked at twice: for the tables, and for the pages that they name.
class tScatteredRings {
 public:
  static constexpr size_t kPageSize = 4096;

  explicit tScatteredRings(std::vector<tRingFinder::tRing> const& rings);

  // Whether there are rings that may lie apart, so that the tables are worth a look.
  bool mayBe() const { return !scattered.empty(); }

  // Looks whether a page of the image is the table of a ring.
  void findTable(std::string_view page);

  // Whether a table was found.
  bool areKnown() const { return !wanted.empty(); }

  // Takes a page that a table names, by its place; others are passed over.
  void takePage(uint64_t place, std::string_view page);

  // The rings as they are with their pages together, as far as those are in the image.
  std::vector<tRingFinder::tRing> join() const;

 private:
  static constexpr size_t kMostTables = 4;  // of a ring

  using tPlaces = std::vector<uint64_t>;  // of the pages of a ring
  struct tScattered {
    size_t ring;    // its number
    uint64_t head;  // the place of the page with its head
    size_t entry;   // of that page in its table
    size_t pages;
    std::vector<tPlaces> tables;  // by each page that looks like its table
  };

  tPlaces placesIn(std::string_view table, tScattered const& one) const;
  std::string bytesOf(tPlaces const& places) const;
  std::string bytesOf(tScattered const& one) const;

  std::vector<tRingFinder::tRing> const rings;
  std::vector<tScattered> scattered;
  std::map<uint64_t, std::string> wanted;  // pages by their places, empty until they are taken
};

}  // namespace oxdiagview
