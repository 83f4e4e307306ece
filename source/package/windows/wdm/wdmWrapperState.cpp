#include "package/windows/wdm/wdmWrapperState.h"

namespace nOXDIAG100 {

constinit tParentList wdmParents;

void initialiseWDMWrapper() {
  wdmParents.initialise();
}

}  // namespace nOXDIAG100
