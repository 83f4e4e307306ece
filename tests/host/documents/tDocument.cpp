#include "documents/tDocument.h"

#include <fstream>
#include <sstream>

namespace {

std::string const kFence = "```";

std::string trim(std::string const& cell) {
  size_t const first = cell.find_first_not_of(" `");
  return first == std::string::npos ? ""
                                    : cell.substr(first, cell.find_last_not_of(" `") - first + 1);
}

std::vector<std::string> splitRow(std::string const& line) {
  std::vector<std::string> cells;
  std::istringstream rest(line.substr(1));
  for (std::string cell; std::getline(rest, cell, '|');) cells.push_back(trim(cell));
  return cells;
}

std::string joinWords(std::string const& text) {
  std::istringstream words(text);
  std::string joined;
  for (std::string word; words >> word;) joined += joined.empty() ? word : " " + word;
  return joined;
}

std::vector<std::string> splitPattern(std::string pattern) {
  std::string const gap = "...";
  std::vector<std::string> pieces;
  for (size_t at = pattern.find(gap); at != std::string::npos; at = pattern.find(gap)) {
    pieces.push_back(joinWords(pattern.substr(0, at)));
    pattern.erase(0, at + gap.size());
  }
  pieces.push_back(joinWords(pattern));
  return pieces;
}

}  // namespace

tDocument::tDocument(std::string const& name) {
  std::ifstream file(std::string(OXDIAG_SOURCE_DIR "/") + name);
  bool isInBlock = false;
  std::string heading;
  size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    text += line + "\n";
    if (line.starts_with(kFence)) {
      isInBlock = !isInBlock;
      if (isInBlock) blocks.push_back({line.substr(kFence.size()), "", number});
    } else if (isInBlock) {
      blocks.back().text += line + "\n";
    } else if (line.starts_with("|")) {
      rows.push_back({heading, splitRow(line), number});
    } else if (line.starts_with("#")) {
      heading = line.substr(line.find_first_not_of("# "));
    }
  }
}

bool matches(std::string const& text, std::string const& pattern) {
  std::string const shown = joinWords(text);
  std::vector<std::string> const pieces = splitPattern(pattern);
  size_t at = 0;
  for (size_t index = 0; index < pieces.size(); ++index) {
    bool const isFirst = index == 0;
    bool const isLast = index + 1 == pieces.size();
    size_t const found = isLast && !isFirst && shown.size() >= pieces[index].size()
                             ? shown.size() - pieces[index].size()
                             : shown.find(pieces[index], at);
    if (found == std::string::npos || found < at || (isFirst && found != 0)) return false;
    if (shown.compare(found, pieces[index].size(), pieces[index]) != 0) return false;
    at = found + pieces[index].size();
  }
  return pieces.size() > 1 || at == shown.size();
}
