#include "status/ownedDescription.h"

#include "qelmk/dynamicCast.h"
#include "qelmk/statusCodes.h"

namespace nOXDIAG100 {
namespace {

void destroyThroughClass(nQELM100::tObject* object) {
  if (object == nullptr) return;
  i32 status = 0;
  object->getClass(status).deleteInstance(object, status);
}

}  // namespace

iStatus2Description* cloneDescription(iStatus2Description const& description, i32& status) {
  return adoptDescription(description.clone(status), status);
}

iStatus2Description* adoptDescription(nQELM100::tObject* object, i32& status) {
  auto* const description = nQELM100::dynamicCast<iStatus2Description>(object);
  if (description != nullptr) return description;
  destroyThroughClass(object);
  if (status >= 0) status = nQELM100::kStatusClassMismatch;
  return nullptr;
}

void destroyDescription(iStatus2Description* description) {
  destroyThroughClass(description);
}

}  // namespace nOXDIAG100
