#pragma once

#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "translators/common/tVocabulary.h"

// What components' own numbers are called in one language: the usage types, properties and values
// of properties in the descriptions of their statuses. A file of words is UTF-8 text, one word a
// line; empty lines and lines that begin with # are passed over:
//
//     component slotbus
//     usage 1 line
//     usage -61007 the slot is not a number
//     property 5 form of a number
//     value 5 1 decimal digits
//
// A component's words follow its line up to that of the next component. One number has one word.
class tWordFile {
 public:
  tWordFile() = default;
  tWordFile(tWordFile const&) = delete;
  tWordFile& operator=(tWordFile const&) = delete;

  // Adds the words of one file. Returns false when the text is none; `problem` is then one sentence
  // part with the number of the line.
  bool add(std::string_view text, std::string& problem);

  // The words for a component, none when it has none. They live as long as this object, and until
  // words are added.
  nTRANSLATORS100::tVocabulary find(std::string_view component) const;

 private:
  struct tComponent {
    std::map<i32, wchar_t const*> usageTypes;
    std::map<i32, wchar_t const*> properties;
    std::map<std::pair<i32, i32>, wchar_t const*> values;
    // The same as tables.
    std::vector<nTRANSLATORS100::tWord> usageTable;
    std::vector<nTRANSLATORS100::tWord> propertyTable;
    std::vector<nTRANSLATORS100::tEnumWord> valueTable;
  };

  bool addLine(std::string_view line, std::string& problem);
  bool addWord(std::string_view kind, std::string_view rest, std::string& problem);
  wchar_t const* keep(std::string_view word, std::string& problem);
  static void makeTables(tComponent& component);

  std::map<std::string, tComponent, std::less<>> components;
  tComponent* current = nullptr;
  std::deque<std::vector<wchar_t>> texts;
};
