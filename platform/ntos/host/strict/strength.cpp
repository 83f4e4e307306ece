#include "ntoshost/strength.h"

namespace ntoshost {

char const* getStrength() {
  return "strict";
}

}  // namespace ntoshost
