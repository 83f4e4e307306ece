// Answers of a symbolizer that is none: whatever the line, what is made of it is not more than it,
// and a place has a function or a line.

#include "oxdiagreport/symbolAnswer.h"

#include "support/fuzzing.h"

void fuzzInput(std::string const& input) {
  size_t bytes = 0;
  for (tSourcePlace const& place : placesIn(input)) {
    bytes += place.function.size() + place.file.size();
    demand(!place.function.empty() || place.line != 0, "a place is known",
           [&] { return readable(input); });
  }
  demand(bytes <= input.size(), "places are not more than the answer",
         [&] { return readable(input); });
}
