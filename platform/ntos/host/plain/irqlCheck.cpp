#include "irqlCheck.h"

namespace ntoshost {

void requireIrqlOnly(KIRQL, char const*) {
}

void requireIrqlAtMost(KIRQL, char const*) {
}

}  // namespace ntoshost
