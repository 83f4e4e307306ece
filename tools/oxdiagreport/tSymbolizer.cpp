#include "oxdiagreport/tSymbolizer.h"

#include <cstdio>

namespace {

constexpr char const* kNames[] = {"llvm-symbolizer", "llvm-symbolizer-14"};
constexpr size_t kMostAnswer = size_t{1} << 20;

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
