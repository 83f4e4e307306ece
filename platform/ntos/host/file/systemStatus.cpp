#include "file/systemStatus.h"

#include <errno.h>

namespace ntoshost {

NTSTATUS systemStatus() {
  switch (errno) {
    case ENOENT:
      return STATUS_OBJECT_NAME_NOT_FOUND;
    case ENOTDIR:
      return STATUS_OBJECT_PATH_NOT_FOUND;
    case ENAMETOOLONG:
      return STATUS_OBJECT_NAME_INVALID;
    case EEXIST:
      return STATUS_OBJECT_NAME_COLLISION;
    case EISDIR:
      return STATUS_FILE_IS_A_DIRECTORY;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return STATUS_DISK_FULL;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
      return STATUS_INSUFFICIENT_RESOURCES;
    default:
      return STATUS_ACCESS_DENIED;
  }
}

}  // namespace ntoshost
