#include "oxdiagk/tConfigurationLock.h"

#include "config/tConfigurationGuard.h"

namespace nOXDIAG100 {

tConfigurationLock::tConfigurationLock() {
  KeInitializeMutex(&tConfigurationGuard::mutexOf(*this), 0);
}

}  // namespace nOXDIAG100
