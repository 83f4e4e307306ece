#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace oxdiagview {

// Names that many lines share, each with a number from 0 in the order in which they came.
class tNameList {
 public:
  // -1 for an empty name.
  int numberOf(std::string_view name);

  // All of them as a JSON array for a script element.
  std::string getJson() const;

 private:
  std::map<std::string, int, std::less<>> numbers;
  std::vector<std::string_view> names;  // within `numbers`
};

}  // namespace oxdiagview
