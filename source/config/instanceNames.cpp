#include "config/instanceNames.h"

#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

bool takeWord(char const*& text, char const* word) {
  char const* behind = text;
  for (; *word != 0; ++word, ++behind) {
    if (*behind != *word) return false;
  }
  text = behind;
  return true;
}

}  // namespace

tConfigurable* findNamedInstance(char const* name) {
  if (name == nullptr) return &tTrace::getInstance();
  if (takeWord(name, "kernel")) takeWord(name, "/");
  if (takeWord(name, "trace")) return &tTrace::getInstance();
  if (takeWord(name, "assert")) return &tAssertConfiguration::getInstance();
  return nullptr;
}

}  // namespace nOXDIAG100
