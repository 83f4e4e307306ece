#include "oxdiagview/page/tNameList.h"

#include "oxdiagview/page/scriptText.h"

namespace oxdiagview {

int tNameList::numberOf(std::string_view name) {
  if (name.empty()) return -1;
  auto const known = numbers.find(name);
  if (known != numbers.end()) return known->second;
  if (names.size() >= kMostNames && name != kOthers) return numberOf(kOthers);
  auto const added = numbers.emplace(name, static_cast<int>(names.size())).first;
  names.push_back(added->first);
  return added->second;
}

std::string tNameList::getJson() const {
  std::string json = "[";
  for (std::string_view const name : names) {
    if (json.size() > 1) json += ',';
    appendScriptText(json, name);
  }
  return json + "]";
}

}  // namespace oxdiagview
