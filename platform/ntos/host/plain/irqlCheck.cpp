#include "irqlCheck.h"

namespace ntoshost {

void requireIrqlAtMost(KIRQL, char const*) {
}

}  // namespace ntoshost
