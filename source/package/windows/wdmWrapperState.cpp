#include "package/windows/wdmWrapperState.h"

namespace nOXDIAG100 {

constinit tWDMWrapperState wdmWrapperState = {};

void initialiseWDMWrapper() {
  ExInitializeFastMutex(&wdmWrapperState.guard);
  wdmWrapperState.parents = {&wdmWrapperState.parents, &wdmWrapperState.parents};
}

}  // namespace nOXDIAG100
