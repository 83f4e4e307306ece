#include "oxdiagreport/symbolAnswer.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

std::string textIn(json const& object, char const* name) {
  auto const member = object.find(name);
  return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

u64 numberIn(json const& object, char const* name) {
  auto const member = object.find(name);
  return member != object.end() && member->is_number_unsigned() ? member->get<u64>() : 0;
}

}  // namespace

std::vector<tSourcePlace> placesIn(std::string const& answer) {
  std::vector<tSourcePlace> places;
  json const object = json::parse(answer, nullptr, false);
  if (!object.is_object() || !object.contains("Symbol")) return places;
  for (json const& symbol : object["Symbol"]) {
    if (!symbol.is_object()) continue;
    tSourcePlace place = {textIn(symbol, "FunctionName"), textIn(symbol, "FileName"),
                          numberIn(symbol, "Line")};
    if (place.function.empty() && place.line == 0) continue;
    places.push_back(std::move(place));
  }
  return places;
}
