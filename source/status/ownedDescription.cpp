#include "status/ownedDescription.h"

#include "qelmk/ownedObjects.h"

namespace nOXDIAG100 {

iStatus2Description* cloneDescription(iStatus2Description const& description, i32& status) {
  return adoptDescription(description.clone(status), status);
}

iStatus2Description* adoptDescription(nQELM100::tObject* object, i32& status) {
  return nQELM100::adoptObject<iStatus2Description>(object, status);
}

void destroyDescription(iStatus2Description* description) {
  nQELM100::destroyThroughClass(description);
}

}  // namespace nOXDIAG100
