#pragma once

#include <memory>
#include <string>

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/tStatus2.h"
#include "translators/common/tVocabulary.h"

// The language of the output: the program's own words, and translators with the words of the
// components that the program knows.
class tLanguage {
 public:
  struct tWords {
    char const* status;
    char const* success;
    char const* warning;
    char const* error;
  };

  // `name` is "english" or "german".
  explicit tLanguage(std::string const& name);

  tWords const& getWords() const { return isGerman ? kGerman : kEnglish; }

  // Makes a translator for the descriptions of a component, whose own words it has when the program
  // knows the component.
  std::unique_ptr<nOXDIAG100::iReportableTranslator> makeTranslator(char const* component) const;

 private:
  static tWords const kEnglish;
  static tWords const kGerman;

  bool isGerman;
};
