#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oxdiagview {

// Finds the memory of flight recorders (include/oxdiagk/tRecorderRing.h) in the bytes of a dump, in
// whatever portions they arrive. Of several copies of one recorder the one with the newest text is
// taken.
//
// At most 32 MiB are held, and the rings that were found, of which there are at most 8. A dump that
// was made to have very many of them takes no longer for it: behind 256 the search finds no more.
class tRingFinder {
 public:
  struct tRing {
    uint64_t offset = 0;   // in the dump
    uint64_t address = 0;  // in the memory of the system that stopped
    uint64_t size = 0;     // with its head
    uint64_t capacity = 0;
    uint64_t written = 0;
    uint64_t missing = 0;  // bytes of its text behind the end of the dump
    std::string text;      // oldest first
  };

  void feed(std::string_view bytes);

  // There are no more bytes: a ring that is cut is taken as far as it goes.
  void finish();

  std::vector<tRing> const& getRings() const { return rings; }

 private:
  void search(bool isAll);
  bool takeRing(size_t place, bool isAll);
  tRing* placeOf(tRing const& ring);

  std::string window;       // bytes that are not passed over yet
  size_t searched = 0;      // of the window
  uint64_t passedOver = 0;  // bytes in front of the window
  std::vector<tRing> rings;
  size_t copies = 0;  // that were made of texts
};

}  // namespace oxdiagview
