#include "package/windows/ssMain.h"

#include "status/statusHeapMain.h"

namespace nOXDIAG100 {

i32 ssMain(u32 reason) {
  return statusHeapMain(reason);
}

}  // namespace nOXDIAG100
