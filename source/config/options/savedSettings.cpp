#include "config/options/savedSettings.h"

#include "config/options/tOptionWords.h"
#include "vexk/memory.h"

namespace nOXDIAG100 {

bool restoreSettings(tConfigurable& object, char* text) {
  tOptionWords const words(text);
  _memDelete(text);
  if (words.hasFailed()) return false;
  object.configure(words.getCount(), words.getWords());
  return true;
}

}  // namespace nOXDIAG100
