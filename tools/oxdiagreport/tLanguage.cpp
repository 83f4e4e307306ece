#include "oxdiagreport/tLanguage.h"

#include <string_view>

#include "slotbus/words/words.h"
#include "translators/english/tEnglishTranslator.h"
#include "translators/german/tGermanTranslator.h"

using nOXDIAG100::iReportableTranslator;
using nTRANSLATORS100::tEnglishTranslator;
using nTRANSLATORS100::tGermanTranslator;
using nTRANSLATORS100::tVocabulary;

namespace {

struct tComponent {
  std::string_view name;
  tVocabulary const* english;
  tVocabulary const* german;
};

// The words of a component, none when it is not among those that the program knows.
tVocabulary findWords(std::string_view component, bool isGerman) {
  tComponent const components[] = {
      {"slotbus", &nSLOTBUS100::kEnglishWords, &nSLOTBUS100::kGermanWords},
  };
  for (tComponent const& known : components) {
    if (known.name == component) return isGerman ? *known.german : *known.english;
  }
  return tVocabulary();
}

}  // namespace

constinit tLanguage::tWords const tLanguage::kEnglish = {"Status", "success", "warning", "error"};
constinit tLanguage::tWords const tLanguage::kGerman = {"Status", "Erfolg", "Warnung", "Fehler"};

tLanguage::tLanguage(std::string const& name) : isGerman(name == "german") {
}

std::unique_ptr<iReportableTranslator> tLanguage::makeTranslator(char const* component) const {
  tVocabulary const words = findWords(component, isGerman);
  if (isGerman) return std::make_unique<tGermanTranslator>(words);
  return std::make_unique<tEnglishTranslator>(words);
}
