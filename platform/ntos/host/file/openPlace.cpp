#include "file/openPlace.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "file/systemStatus.h"

namespace ntoshost {
namespace {

constexpr mode_t kFileMode = 0666;
constexpr mode_t kFolderMode = 0777;

// IO_STATUS_BLOCK::Information of ZwCreateFile
constexpr u64 kSuperseded = 0;
constexpr u64 kOpened = 1;
constexpr u64 kCreated = 2;
constexpr u64 kOverwritten = 3;

bool isFolder(struct stat const& facts) {
  return S_ISDIR(facts.st_mode);
}

NTSTATUS look(Place const& place, struct stat& facts, bool& isThere) {
  int const flags = AT_SYMLINK_NOFOLLOW | (place.isFolderItself() ? AT_EMPTY_PATH : 0);
  isThere = fstatat(place.getFolder(), place.getName(), &facts, flags) == 0;
  return isThere || errno == ENOENT ? STATUS_SUCCESS : systemStatus();
}

// Whether what is there can be what is asked for.
NTSTATUS fit(struct stat const& facts, OpenRequest const& request) {
  if (request.disposition == FILE_CREATE) return STATUS_OBJECT_NAME_COLLISION;
  if (!isFolder(facts) && !S_ISREG(facts.st_mode)) return STATUS_ACCESS_DENIED;
  if (isFolder(facts) && request.wantsFile()) return STATUS_FILE_IS_A_DIRECTORY;
  if (!isFolder(facts) && request.wantsFolder()) return STATUS_NOT_A_DIRECTORY;
  return isFolder(facts) && request.empties() ? STATUS_OBJECT_NAME_COLLISION : STATUS_SUCCESS;
}

NTSTATUS share(OpenRequest const& request, HandleTable const& others, OpenFile const& file) {
  bool const mayEmpty = !request.empties() || !others.isInUse(file);
  return mayEmpty && others.isShared(file) ? STATUS_SUCCESS : STATUS_SHARING_VIOLATION;
}

int accessFlags(OpenFile const& file) {
  if (file.isDirectory) return O_RDONLY | O_DIRECTORY;
  int const direction = !file.mayWrite() ? O_RDONLY : file.mayRead() ? O_RDWR : O_WRONLY;
  return direction | (file.appendsOnly() ? O_APPEND : 0);
}

int createFlags(OpenRequest const& request, bool isThere) {
  if (!isThere) return O_CREAT | O_EXCL;
  return request.empties() ? O_TRUNC : 0;
}

NTSTATUS openDescriptor(Place const& place, int flags, OpenFile& file) {
  char const* const name = place.isFolderItself() ? "." : place.getName();
  file.descriptor = openat(place.getFolder(), name, flags | O_NOFOLLOW | O_CLOEXEC, kFileMode);
  return file.descriptor < 0 ? systemStatus() : STATUS_SUCCESS;
}

void identify(struct stat const& facts, OpenFile& file) {
  file.device = facts.st_dev;
  file.inode = facts.st_ino;
  file.isDirectory = isFolder(facts);
}

NTSTATUS openExisting(Place const& place, OpenRequest const& request, struct stat const& facts,
                      HandleTable const& others, OpenFile& file) {
  identify(facts, file);
  NTSTATUS status = fit(facts, request);
  if (NT_SUCCESS(status)) status = share(request, others, file);
  if (!NT_SUCCESS(status)) return status;
  return openDescriptor(place, accessFlags(file) | createFlags(request, true), file);
}

NTSTATUS create(Place const& place, OpenRequest const& request, OpenFile& file) {
  if (!request.mayCreate()) return STATUS_OBJECT_NAME_NOT_FOUND;
  file.isDirectory = request.wantsFolder();
  if (file.isDirectory && mkdirat(place.getFolder(), place.getName(), kFolderMode) != 0) {
    return systemStatus();
  }
  NTSTATUS const status =
      openDescriptor(place, accessFlags(file) | createFlags(request, file.isDirectory), file);
  struct stat facts;
  if (NT_SUCCESS(status) && fstat(file.descriptor, &facts) == 0) identify(facts, file);
  return status;
}

u64 whatWasDone(OpenRequest const& request, bool wasThere) {
  if (!wasThere) return kCreated;
  if (!request.empties()) return kOpened;
  return request.disposition == FILE_SUPERSEDE ? kSuperseded : kOverwritten;
}

}  // namespace

NTSTATUS openPlace(Place const& place, OpenRequest const& request, HandleTable const& others,
                   OpenFile& file, u64& done) {
  struct stat facts;
  bool isThere = false;
  NTSTATUS const status = look(place, facts, isThere);
  if (!NT_SUCCESS(status)) return status;
  file = OpenFile{};
  file.access = request.access;
  file.share = request.share;
  done = whatWasDone(request, isThere);
  return isThere ? openExisting(place, request, facts, others, file) : create(place, request, file);
}

}  // namespace ntoshost
