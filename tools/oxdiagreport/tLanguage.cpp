#include "oxdiagreport/tLanguage.h"

#include "translators/english/tEnglishTranslator.h"
#include "translators/german/tGermanTranslator.h"

using nOXDIAG100::iReportableTranslator;
using nTRANSLATORS100::tEnglishTranslator;
using nTRANSLATORS100::tGermanTranslator;
using nTRANSLATORS100::tVocabulary;

constinit tLanguage::tWords const tLanguage::kEnglish = {"Status", "success",    "warning",
                                                         "error",  "Call stack", "unknown module"};
constinit tLanguage::tWords const tLanguage::kGerman = {
    "Status", "Erfolg", "Warnung", "Fehler", "Aufrufliste", "unbekanntes Modul"};

tLanguage::tLanguage(std::string const& name, tWordFile const& words)
    : isGerman(name == "german"), componentWords(words) {
}

std::unique_ptr<iReportableTranslator> tLanguage::makeTranslator(char const* component) const {
  tVocabulary const words = componentWords.find(component);
  if (isGerman) return std::make_unique<tGermanTranslator>(words);
  return std::make_unique<tEnglishTranslator>(words);
}
