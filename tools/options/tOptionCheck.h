#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "options/optionTable.h"

// The library passes over what it does not understand in option words, as a driver must. A person
// at a terminal wants to be told: this class does the telling. It reads words as the library does
// and stops at the first that has not the effect that one expects of it.
class tOptionCheck {
 public:
  // Both must outlive the object.
  tOptionCheck(tOptionLanguage const& language, std::vector<std::string> const& words);

  // Nothing when all words are fine, otherwise a sentence part such as
  // "'--timestmp' is no option, perhaps --timestamp". Call once.
  std::optional<std::string> findProblem();

 private:
  using tRule = void (tOptionCheck::*)(tOption const& option);
  using tCandidates = std::vector<std::string_view>;

  static tRule const kRules[];  // in the order of tValueRule

  void readOption(std::string const& word);
  void readNothing(tOption const& option);
  void readSwitch(tOption const& option);
  void readTextField(tOption const& option);
  void readNumberField(tOption const& option);
  void readField(tOption const& option, bool isNumber);
  void readWidth(tOption const& option);
  void readFilter(tOption const& option);
  void readDestination(tOption const& option);
  void readBaudRates();
  void readFileWords();
  void readRecorderWords();
  void readCalibration(tOption const& option);
  void readTokens(tOption const& option);
  void readCategory(tOption const& option);

  bool hasValue() const;
  tCandidates getOptionWords() const;
  void refuse(std::string_view word, std::string_view sentencePart,
              tCandidates const& candidates = {});
  void refuseMore(std::string_view what);

  tOptionLanguage const& known;
  std::vector<std::string>::const_iterator next;
  std::vector<std::string>::const_iterator end;
  std::optional<std::string> problem;
};
