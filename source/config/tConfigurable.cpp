#include "oxdiagk/tConfigurable.h"

#include "config/options/tOptionWords.h"

namespace nOXDIAG100 {

tConfigurable::~tConfigurable() = default;

void tConfigurable::configure(char const* options) {
  tOptionWords const words(options);
  configure(words.getCount(), words.getWords());
}

}  // namespace nOXDIAG100
