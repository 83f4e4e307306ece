#include "vexk/sync.h"

#include "tSyncTable.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"

namespace {

bool isValidName(char const* name) {
  u32 length = 0;
  while (length <= kSyncMaximumNameLength && name[length] != '\0') ++length;
  return length != 0 && length <= kSyncMaximumNameLength;
}

bool isValid(char const* name, tSyncDescriptor const& descriptor) {
  if (descriptor.kind != kSyncKindMutex && descriptor.kind != kSyncKindTokenMutex) return false;
  if (descriptor.flags != 0 && descriptor.flags != kSyncFlagLongLived) return false;
  if ((descriptor.access & kSyncAccessSynchronize) == 0) return false;
  if (name == nullptr) return descriptor.kind == kSyncKindMutex;
  return isValidName(name);
}

}  // namespace

iSync* syncOpen(char const* name, tSyncDescriptor const& descriptor, i32& status) {
  if (status < 0) return nullptr;
  if (pkgIsVexkInitialized() == 0) {
    status = kStatusNotInitialized;
    return nullptr;
  }
  if (!isValid(name, descriptor)) {
    status = kStatusBadArgument;
    return nullptr;
  }
  return vexSyncTable.open(name, descriptor, status);
}

i32 syncClose(iSync*& sync) {
  return sync == nullptr ? 0 : vexSyncTable.close(sync);
}
