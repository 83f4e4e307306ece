#pragma once

#include <cstdint>
#include <vector>

#include "oxdiagview/tColumn.h"
#include "oxdiagview/tPrefixText.h"

namespace oxdiagview {

// Knows which part of a prefix is which field. A trace does not say which fields are switched on,
// and numbers look alike, so the table goes by what the lines before had, or by the legend if the
// trace has one.
class tLayoutTable {
 public:
  // Look at a prefix, before or when it is asked about: at its length, and at what is in it. All
  // lengths that are at hand come first, since they tell which numbers are whole.
  void noteLength(tPrefixText const& prefix);
  void note(tPrefixText const& prefix);

  // To be called when many lines were noted, before the first is asked about: what most of them
  // have goes for the others.
  void findUsual();

  // From now on lines have these fields, as far as they fit.
  void setLegend(tFieldSet fields) { legend = fields; }

  // The fields of a prefix in their order, one for each part; none when no fields go with it.
  tFieldSet find(tPrefixText const& prefix);

  // Whether a prefix like this was noted before.
  bool knows(tPrefixText const& prefix) const;

  // Whether the last part of a prefix may lack its end: it has no padding, and the length at which
  // others end.
  bool isCut(tPrefixText const& prefix) const;

 private:
  struct tShape {
    uint32_t signature = 0;
    uint32_t count = 0;   // lines
    uint32_t solved = 0;  // count when the fields were found
    tFieldSet fields = 0;
    tColumn columns[tPrefixText::kMostParts];
  };

  tShape& getShape(uint32_t signature);
  tFieldSet findAlone(tPrefixText const& prefix);
  tFieldSet fit(tFieldSet known, tPrefixText const& prefix) const;
  tFieldSet solve(tShape const& shape) const;
  int getCost(tShape const& shape, tFieldSet fields) const;

  std::vector<tShape> shapes;  // the last one that was used is the first
  tFieldSet legend = 0;
  tFieldSet usual = 0;    // of the line before
  tFieldSet fullest = 0;  // the most that a line had
  size_t paddedLength = 0;
  size_t fullLength = 0;  // the longest
  uint32_t fullCount = 0;
  bool areFullAlike = true;
};

}  // namespace oxdiagview
