// Dumps of memory with flight recorders that no driver kept. One operation a line; what has a
// length or an inverse has the right one, until a byte is changed:
//
//     rCAPACITY WRITTEN ADDRESS TEXT  a recorder of that many bytes, with the text over and over
//     iENTRY WITHIN ORDER             the pages of the last recorder apart, and a page table of
//     them hPLACE BYTE                     changes a byte of the last recorder xCOUNT so many bytes
//     of nothing tTEXT                           these bytes cCOUNT                          takes
//     so many bytes off the end
//
// or, with R as the first byte, the dump itself.

#include <algorithm>
#include <cstring>

#include "oxdiagk/tRecorderRing.h"
#include "oxdiagview/tRingFinder.h"
#include "oxdiagview/tScatteredRings.h"
#include "support/fuzzing.h"
#include "support/tScript.h"

namespace {

using nOXDIAG100::tRecorderRing;
using oxdiagview::tRingFinder;
using oxdiagview::tScatteredRings;
using tRings = std::vector<tRingFinder::tRing>;

constexpr size_t kPage = tScatteredRings::kPageSize;
constexpr size_t kEntries = 512;  // of a page table
constexpr size_t kMostCapacity = 5 * kPage;
constexpr size_t kMostDump = size_t{256} << 10;
constexpr size_t kMostRings = 8;
constexpr u64 kTableBits = 0x8000'0000'0000'0063;  // of an entry, beside the page's place
constexpr u64 kFrameMask = 0x000F'FFFF'FFFF'F000;

class tDump {
 public:
  explicit tDump(std::string const& input) {
    if (input.starts_with('R')) bytes = input.substr(1);
    if (input.starts_with('R')) return;
    for (tScript script(input); bytes.size() < kMostDump && script.next();) apply(script);
  }

  std::string bytes;

  // The only recorder of an image that is nothing else, in one piece; empty for other dumps.
  std::string whole;

 private:
  void apply(tScript& script) {
    char const operation = script.operation("rihxtc");
    whole.clear();
    switch (operation) {
      case 'r':
        return addRecorder(script);
      case 'i':
        return scatter(script);
      case 'h':
        return change(script);
      case 'x':
        bytes.append(script.number() % kMostDump, 'x');
        return;
      case 't':
        bytes += script.text();
        return;
      default:
        bytes.resize(bytes.size() - std::min<size_t>(script.number(), bytes.size()));
    }
  }

  void addRecorder(tScript& script) {
    tRecorderRing head = {};
    std::memcpy(head.signature, tRecorderRing::kSignature, sizeof(head.signature));
    head.headSize = sizeof(head);
    head.layout = tRecorderRing::kLayout;
    head.capacity = 1 + script.number() % kMostCapacity;
    head.inverse = ~head.capacity;
    head.written = script.number();
    head.address = script.number();
    std::string text;
    do {
      text += script.text() + "\n";
    } while (text.size() < head.capacity);
    begin = bytes.size();
    bytes.append(reinterpret_cast<char const*>(&head), sizeof(head));
    bytes.append(text, 0, head.capacity);
    end = bytes.size();
  }

  // The page with the table lies behind the others, whose order is turned round or rotated. The
  // kernel gives no block across the end of a page that does not begin with one: the head is in
  // one.
  void scatter(tScript& script) {
    size_t const entry = script.number() % kEntries;
    size_t const within = script.number() % (kPage - sizeof(tRecorderRing) + 1);
    unsigned const order = script.number();
    if (end != bytes.size() || end - begin < sizeof(tRecorderRing)) return;
    std::string memory = bytes.substr(begin);
    bytes.resize(begin);
    u64 const address = 0xFFFF'8000'0000'0000 + entry * kPage + within;
    std::memcpy(&memory[offsetof(tRecorderRing, address)], &address, sizeof(address));
    tRecorderRing head;
    std::memcpy(&head, memory.data(), sizeof(head));
    bool const isAlone = bytes.empty() && memory.size() == head.headSize + head.capacity;
    std::string const inOnePiece = memory;
    memory.insert(0, within, 'x');
    memory.resize((memory.size() + kPage - 1) / kPage * kPage, 'y');
    size_t const pages = memory.size() / kPage;
    bytes.resize((bytes.size() + kPage - 1) / kPage * kPage, 'z');
    appendPages(memory, order, entry);
    begin = end = bytes.size();
    bool const isWhole = isAlone && pages > 1 && entry + pages <= kEntries;
    if (isWhole && countTables(bytes.size() - kPage, entry) == 1) whole = inOnePiece;
  }

  // The pages that name the same first page as the table: texts and numbers may look like one.
  size_t countTables(size_t table, size_t entry) const {
    size_t count = 0;
    u64 const head = entryAt(table, entry);
    for (size_t place = 0; place < bytes.size(); place += kPage) {
      u64 const bits = entryAt(place, entry);
      if ((bits & 1) != 0 && ((bits ^ head) & kFrameMask) == 0) ++count;
    }
    return count;
  }

  u64 entryAt(size_t table, size_t entry) const {
    u64 bits = 0;
    std::memcpy(&bits, bytes.data() + table + entry * sizeof(bits), sizeof(bits));
    return bits;
  }

  void appendPages(std::string const& memory, unsigned order, size_t entry) {
    size_t const pages = memory.size() / kPage;
    size_t const start = bytes.size();
    std::string table(kPage, '\0');
    bytes.resize(start + memory.size());
    for (size_t page = 0; page < pages; ++page) {
      size_t const turned = order % 2 == 0 ? page : pages - 1 - page;
      size_t const place = start + (turned + order / 2) % pages * kPage;
      bytes.replace(place, kPage, memory, page * kPage, kPage);
      u64 const bits = place | kTableBits;
      if (entry + page < kEntries) std::memcpy(&table[(entry + page) * 8], &bits, sizeof(bits));
    }
    bytes += table;
  }

  void change(tScript& script) {
    size_t const place = begin + script.number() % sizeof(tRecorderRing);
    if (place < bytes.size()) bytes[place] = static_cast<char>(script.number());
  }

  size_t begin = 0;  // of the last recorder
  size_t end = 0;
};

tRings ringsIn(std::string const& dump, size_t portion) {
  tRingFinder finder;
  for (size_t place = 0; place < dump.size(); place += portion) {
    finder.feed(std::string_view(dump).substr(place, portion));
  }
  finder.finish();
  return finder.getRings();
}

// As the viewer does it with a file.
tRings joined(std::string const& dump, tRings const& rings) {
  tScatteredRings scattered(rings);
  if (!scattered.mayBe()) return rings;
  size_t const size = dump.size() / kPage * kPage;
  for (size_t place = 0; place < size; place += kPage) {
    scattered.findTable(std::string_view(dump).substr(place, kPage));
  }
  if (!scattered.areKnown()) return rings;
  for (size_t place = 0; place < size; place += kPage) {
    scattered.takePage(place, std::string_view(dump).substr(place, kPage));
  }
  return scattered.join();
}

std::string described(tRings const& rings) {
  std::string text;
  for (tRingFinder::tRing const& ring : rings) {
    for (uint64_t const number : {ring.offset, ring.address, ring.size, ring.capacity, ring.written,
                                  ring.missing, uint64_t{ring.text.size()}}) {
      text += std::to_string(number) + " ";
    }
    text += ring.text + "\n";
  }
  return text;
}

// A line end may stand for what is missing between two texts.
void demandSound(tRings const& rings, std::string const& dump) {
  demand(rings.size() <= kMostRings, "there are not more rings than are kept",
         [&] { return std::to_string(rings.size()); });
  for (tRingFinder::tRing const& ring : rings) {
    u64 const used = std::min(ring.written, ring.capacity);
    bool const isWhole = ring.missing == 0
                             ? ring.text.size() == used
                             : ring.missing <= used && ring.text.size() <= used - ring.missing + 1;
    demand(isWhole && ring.text.size() <= dump.size() + 1 && ring.offset < dump.size(),
           "a ring has the text that was written and is there", [&] { return described({ring}); });
  }
}

}  // namespace

void fuzzInput(std::string const& input) {
  tDump const dump(input);
  tRings const rings = ringsIn(dump.bytes, dump.bytes.size() + 1);
  demandSound(rings, dump.bytes);
  demandEqual(described(ringsIn(dump.bytes, kPage - 1)), described(rings),
              "portions change nothing");
  tRings const together = joined(dump.bytes, rings);
  demandSound(together, dump.bytes);
  tRings const wanted = ringsIn(dump.whole, dump.whole.size() + 1);
  if (wanted.size() != 1 || rings.size() != 1) return;
  demandEqual(together[0].text, wanted[0].text, "pages that lie apart are put together");
}
