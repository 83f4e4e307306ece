#include "file/place.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

namespace ntoshost {
namespace {

// Symbolic links could lead out of the drive.
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool exists(int folder, char const* name) {
  return faccessat(folder, name, F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

DIR* openEntries(int folder) {
  int const descriptor = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const entries = descriptor < 0 ? nullptr : fdopendir(descriptor);
  if (entries == nullptr && descriptor >= 0) close(descriptor);
  return entries;
}

size_t lengthToSeparator(wchar_t const* path, size_t length) {
  size_t at = 0;
  while (at < length && !isSeparator(path[at])) ++at;
  return at;
}

}  // namespace

Place::Place(int folder) : m_folder(fcntl(folder, F_DUPFD_CLOEXEC, 0)) {
}

Place::~Place() {
  if (m_folder >= 0) close(m_folder);
}

NTSTATUS Place::walk(wchar_t const* path, size_t length, bool ignoresCase) {
  while (length != 0) {
    NTSTATUS const entered = enter();
    if (!NT_SUCCESS(entered)) return entered;
    size_t const nameLength = lengthToSeparator(path, length);
    if (!m_name.set(path, nameLength)) return STATUS_OBJECT_NAME_INVALID;
    if (ignoresCase) matchCase();
    // A separator at the end has no name behind it.
    if (nameLength + 1 == length) return STATUS_OBJECT_NAME_INVALID;
    size_t const taken = nameLength < length ? nameLength + 1 : length;
    path += taken;
    length -= taken;
  }
  return STATUS_SUCCESS;
}

NTSTATUS Place::enter() {
  if (isFolderItself()) return STATUS_SUCCESS;
  int const next = openat(m_folder, m_name.get(), kFolderFlags);
  if (next < 0) return STATUS_OBJECT_PATH_NOT_FOUND;
  close(m_folder);
  m_folder = next;
  return STATUS_SUCCESS;
}

void Place::matchCase() {
  if (exists(m_folder, m_name.get())) return;
  DIR* const entries = openEntries(m_folder);
  if (entries == nullptr) return;
  while (dirent const* const entry = readdir(entries)) {
    if (strcasecmp(entry->d_name, m_name.get()) != 0) continue;
    m_name.setNarrow(entry->d_name);
    break;
  }
  closedir(entries);
}

}  // namespace ntoshost
