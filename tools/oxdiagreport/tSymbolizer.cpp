#include "oxdiagreport/tSymbolizer.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

constexpr char const* kNames[] = {"llvm-symbolizer", "llvm-symbolizer-14"};
constexpr size_t kMostAnswer = size_t{1} << 20;

std::string textIn(json const& object, char const* name) {
  auto const member = object.find(name);
  return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

u64 numberIn(json const& object, char const* name) {
  auto const member = object.find(name);
  return member != object.end() && member->is_number_unsigned() ? member->get<u64>() : 0;
}

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

}  // namespace

bool tSymbolizer::start(std::string& problem) {
  for (char const* name : kNames) {
    if (symbolizer.empty()) symbolizer = tChildProgram::findOnPath(name);
  }
  if (symbolizer.empty()) {
    problem = "llvm-symbolizer is not on PATH; Debian has it in the package llvm";
    return false;
  }
  if (startProgram()) return true;
  problem = "'" + symbolizer + "' cannot be started";
  return false;
}

bool tSymbolizer::startProgram() {
  received.clear();
  return program.start(symbolizer, {"--relative-address", "--output-style=JSON"});
}

std::vector<tSourcePlace> tSymbolizer::find(std::string const& file, u64 offset) {
  // The program takes a name between quotation marks, and none with one in it.
  if (file.find_first_of("\"\n\r") != std::string::npos || withoutAnswer.contains(file)) return {};
  if (!program.isStarted() && !startProgram()) return {};
  char place[24];
  std::snprintf(place, sizeof(place), "0x%llx", static_cast<unsigned long long>(offset));
  std::string answer;
  if (!program.ask("CODE \"" + file + "\" " + place + "\n") || !readLine(answer)) {
    program.stop();
    withoutAnswer.insert(file);
    return {};
  }
  return placesIn(answer);
}

// Empty lines are none.
bool tSymbolizer::readLine(std::string& line) {
  while (received.size() < kMostAnswer) {
    size_t const end = received.find('\n');
    if (end == std::string::npos) {
      if (!program.listen(received)) return false;
      continue;
    }
    line = received.substr(0, end);
    received.erase(0, end + 1);
    if (!line.empty() && line != "\r") return true;
  }
  return false;
}
