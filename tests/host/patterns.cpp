#include "patterns.h"

#include <regex>

std::string replaceAll(std::string const& text, char const* pattern, char const* replacement) {
  return std::regex_replace(text, std::regex(pattern), replacement);
}

std::string replaceFirst(std::string const& text, char const* pattern, char const* replacement) {
  return std::regex_replace(text, std::regex(pattern), replacement,
                            std::regex_constants::format_first_only);
}

std::vector<std::string> partsOf(std::string const& text, std::string const& pattern) {
  std::smatch parts;
  std::regex_match(text, parts, std::regex(pattern));
  return {parts.begin(), parts.end()};
}

std::vector<std::string> findAll(std::string const& text, std::string const& pattern) {
  std::regex const searched(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator each(text.begin(), text.end(), searched), end; each != end; ++each) {
    found.push_back((*each)[1]);
  }
  return found;
}
