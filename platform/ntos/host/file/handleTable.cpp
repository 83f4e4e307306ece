#include "file/handleTable.h"

#include <stdlib.h>

namespace ntoshost {
namespace {

// Kernel handles are negative and in steps of four.
constexpr u64 kKernelHandles = 0xFFFFFFFF80000000;
constexpr u64 kHandleStep = 4;

bool isSame(OpenFile const& left, OpenFile const& right) {
  return left.device == right.device && left.inode == right.inode;
}

bool isUsed(OpenFile const& file) {
  return file.mayRead() || file.mayWrite();
}

bool allows(OpenFile const& one, OpenFile const& other) {
  bool const mayRead = !other.mayRead() || (one.share & FILE_SHARE_READ) != 0;
  bool const mayWrite = !other.mayWrite() || (one.share & FILE_SHARE_WRITE) != 0;
  return mayRead && mayWrite;
}

}  // namespace

HANDLE HandleTable::add(OpenFile const& file) {
  OpenFile* const added = static_cast<OpenFile*>(malloc(sizeof(OpenFile)));
  if (added == nullptr) return nullptr;
  *added = file;
  added->newer = nullptr;
  added->handle = reinterpret_cast<HANDLE>(kKernelHandles + kHandleStep * ++m_lastSerial);
  (m_newest != nullptr ? m_newest->newer : m_oldest) = added;
  m_newest = added;
  ++m_count;
  return added->handle;
}

OpenFile* HandleTable::find(HANDLE handle) const {
  OpenFile* file = m_oldest;
  while (file != nullptr && file->handle != handle) file = file->newer;
  return file;
}

void HandleTable::remove(OpenFile* file) {
  OpenFile* older = nullptr;
  for (OpenFile* each = m_oldest; each != file; each = each->newer) older = each;
  (older != nullptr ? older->newer : m_oldest) = file->newer;
  if (m_newest == file) m_newest = older;
  --m_count;
  free(file);
}

bool HandleTable::isShared(OpenFile const& file) const {
  for (OpenFile const* other = m_oldest; other != nullptr; other = other->newer) {
    if (!isSame(*other, file) || !isUsed(*other) || !isUsed(file)) continue;
    if (!allows(*other, file) || !allows(file, *other)) return false;
  }
  return true;
}

bool HandleTable::isInUse(OpenFile const& file) const {
  for (OpenFile const* other = m_oldest; other != nullptr; other = other->newer) {
    if (isSame(*other, file) && isUsed(*other)) return true;
  }
  return false;
}

}  // namespace ntoshost
