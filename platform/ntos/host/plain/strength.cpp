#include "ntoshost/strength.h"

namespace ntoshost {

char const* getStrength() {
  return "plain";
}

}  // namespace ntoshost
