#include "options/nearestWord.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace {

constexpr size_t kShortWord = 5;     // up to here one slip is all that is forgiven
constexpr size_t kLongestWord = 40;  // nothing longer is near to any word
constexpr size_t kLeastBeginning = 4;

bool isSame(char left, char right) {
  return std::tolower(static_cast<unsigned char>(left)) ==
         std::tolower(static_cast<unsigned char>(right));
}

// How many letters have to be put in, taken out or changed to make `left` of `right`.
size_t measureDistance(std::string_view left, std::string_view right) {
  std::vector<size_t> row(right.size() + 1);
  for (size_t column = 0; column < row.size(); ++column) row[column] = column;
  for (size_t line = 1; line <= left.size(); ++line) {
    size_t diagonal = row[0];
    row[0] = line;
    for (size_t column = 1; column < row.size(); ++column) {
      size_t const changed = diagonal + (isSame(left[line - 1], right[column - 1]) ? 0 : 1);
      diagonal = row[column];
      row[column] = std::min({changed, row[column] + 1, row[column - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string_view findNearestWord(std::string_view word,
                                 std::span<std::string_view const> candidates) {
  if (word.size() > kLongestWord) return {};
  std::string_view nearest;
  size_t least = word.size() <= kShortWord ? 2 : 3;
  for (std::string_view const candidate : candidates) {
    size_t const distance = measureDistance(word, candidate);
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  if (!nearest.empty() || word.size() < kLeastBeginning) return nearest;
  auto const longer = std::find_if(candidates.begin(), candidates.end(),
                                   [word](auto candidate) { return candidate.starts_with(word); });
  return longer == candidates.end() ? std::string_view() : *longer;
}
