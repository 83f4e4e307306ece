#pragma once

#include <memory>
#include <string>

#include "oxdiagk/iReportableTranslator.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/tWordFile.h"

// The language of the output: the program's own words, and translators with the words of
// components.
class tLanguage {
 public:
  struct tWords {
    char const* status;
    char const* success;
    char const* warning;
    char const* error;
    char const* callStack;
    char const* unknownModule;
  };

  // `name` is "english" or "german". The words of components have to live as long as this object.
  tLanguage(std::string const& name, tWordFile const& words);

  tWords const& getWords() const { return isGerman ? kGerman : kEnglish; }

  // Makes a translator for the descriptions of a component, with the component's own words if it
  // has any.
  std::unique_ptr<nOXDIAG100::iReportableTranslator> makeTranslator(char const* component) const;

 private:
  static tWords const kEnglish;
  static tWords const kGerman;

  bool isGerman;
  tWordFile const& componentWords;
};
