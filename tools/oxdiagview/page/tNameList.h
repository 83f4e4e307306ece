#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace oxdiagview {

// Names that many lines share, each with a number from 0 in the order in which they came. Of more
// than kMostNames the later ones are one, kOthers.
class tNameList {
 public:
  static constexpr size_t kMostNames = 10'000;
  static constexpr std::string_view kOthers = "(others)";

  // -1 for an empty name.
  int numberOf(std::string_view name);

  // All of them as a JSON array for a script element.
  std::string getJson() const;

 private:
  std::map<std::string, int, std::less<>> numbers;
  std::vector<std::string_view> names;  // within `numbers`
};

}  // namespace oxdiagview
