#include "ntoshost/files.h"

#include <fcntl.h>
#include <stdio.h>

#include "file/filesState.h"
#include "ntoshost/violation.h"
#include "standardError.h"

namespace ntoshost {

constinit Files g_files;

namespace {

char const* kindOf(OpenFile const& file) {
  if (file.object != nullptr) return "device";
  return file.isDirectory ? "folder" : "file";
}

void printHandle(OpenFile const& file) {
  char line[160];
  int const length =
      snprintf(line, sizeof(line), "ntos: handle %p: a %s, opened with access 0x%x\n", file.handle,
               kindOf(file), file.access);
  writeStandardError(line, static_cast<size_t>(length));
}

}  // namespace

bool mountDrive(char letter, char const* folder) {
  FilesLock const lock;
  if (g_files.drives.find(static_cast<u8>(letter)) == nullptr) return false;
  int const descriptor = open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return false;
  g_files.drives.mount(letter, descriptor);
  return true;
}

void unmountDrive(char letter) {
  FilesLock const lock;
  if (g_files.drives.find(static_cast<u8>(letter)) != nullptr) g_files.drives.mount(letter, -1);
}

void limitDrive(char letter, u64 bytes) {
  FilesLock const lock;
  Drive* const drive = g_files.drives.find(static_cast<u8>(letter));
  if (drive == nullptr) return;
  drive->isLimited = true;
  drive->room = bytes;
}

FailedWrites failedWrites() {
  FilesLock const lock;
  return g_files.failedWrites;
}

u64 outstandingHandles() {
  FilesLock const lock;
  return g_files.handles.getCount();
}

void reportHandles() {
  FilesLock const lock;
  OpenFile const* file = g_files.handles.getOldest();
  for (; file != nullptr; file = file->newer) printHandle(*file);
}

void requireNoHandles(char const* who) {
  FilesLock const lock;
  u64 const count = g_files.handles.getCount();
  if (count != 0) violation("%s left %llu open file handles behind.", who, count);
}

void invalidateHandle(HANDLE handle) {
  FilesLock const lock;
  OpenFile* const file = g_files.handles.find(handle);
  if (file == nullptr) violation("invalidateHandle was given %p, which is not open.", handle);
  file->isInvalidated = true;
}

void failFileCalls(FileCallKind kind, u64 first, u64 count, NTSTATUS status) {
  FilesLock const lock;
  g_files.failures.set(kind, first, count, status);
}

u64 fileCallsSeen() {
  FilesLock const lock;
  return g_files.log.getCount();
}

void forgetFileCalls() {
  FilesLock const lock;
  g_files.log.clear();
}

FileCall fileCall(u64 index) {
  FilesLock const lock;
  FileCall const* const call = g_files.log.find(index);
  if (call == nullptr) violation("fileCall: call number %llu is not kept.", index);
  return *call;
}

}  // namespace ntoshost
